#pragma once

#import <Foundation/Foundation.h>

#include <memory>
#include <string>

struct __CFString;

// What disk paths and file names ask the platform alike, for the file layer's own use. The caller
// has an autorelease pool open for everything but NewCFString.

/// Null for a null text and for one that is not valid UTF-8, which no file manager service takes.
NSString* PathFromText(const char* pszPath);

/// Nil if there is no item at the path or it cannot be read.
NSDictionary* AttributesOfItem(const std::string& strPath);

/// A new string, which the caller releases; null for a text that is not valid UTF-8.
__CFString* NewCFString(const std::string& strText);

/// The path of a temporary item, as a template to be filled in by mkstemp or mkdtemp.
std::unique_ptr<char[]> TemporaryTemplate(NSString* strName);
