#pragma once

#import <Foundation/Foundation.h>

#include <memory>
#include <string>

// What disk paths and file names ask the file manager alike, for the file layer's own use. The
// caller has an autorelease pool open.

// Null for a null text and for one that is not valid UTF-8, which no file manager service takes.
NSString* PathFromText(const char* pszPath);

// Nil if there is no item at the path or it cannot be read.
NSDictionary* AttributesOfItem(const std::string& strPath);

// The path of a temporary item, as a template to be filled in by mkstemp or mkdtemp.
std::unique_ptr<char[]> TemporaryTemplate(NSString* strName);
