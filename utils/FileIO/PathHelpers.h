#pragma once

#include <string>

// Taking paths apart and joining them, on the text alone: nothing here asks the file system,
// normalises, or knows about "." and "..". Texts are UTF-8 bytes. Stateless, any thread.

/// Base and tail joined with one backslash; a single backslash at the tail's start is dropped. An
/// empty base gets none: the result is the tail, less one leading backslash. The backslash is the
/// separator of this operation alone: everything else in the layer works with "/".
std::string AddPath(const char* pszBase, const char* pszTail);

/// Name and extension joined with one point, by the rule of AddPath. Adds, never replaces: "a.b"
/// and "c" give "a.b.c".
std::string AddExtension(const char* pszName, const char* pszExtension);

/// The text after the last point, wherever that stands: "a.b/c" gives "b/c". Empty without a point.
std::string GetExtension(const std::string* pstrName);

/// The name between the last "/" and the last point, so "/dir/name.wav" gives "name". A point at
/// the very start of the text is part of the name; a point before the last "/" ends nothing.
std::string GetExtractName(const std::string* pstrPath);

/// The text before the last "/", without it. Empty if there is none or it is the first character.
std::string ExtractPath(const std::string* pstrPath);
