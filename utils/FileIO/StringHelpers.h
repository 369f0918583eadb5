#pragma once

// Pascal strings and bounded C strings.
//
// A Pascal string is a byte buffer: byte 0 holds the length, 0 to 255, and the characters follow
// from byte 1 without a terminator. No function is told the size of its target, so a buffer that
// receives a Pascal string has room for 256 bytes. Buffers belong to the caller unless said
// otherwise. Stateless; only pstrcmpi and PStringEndCompare look at the process's locale.

/// Pascal to C. The target has room for the length plus a terminator.
void PtoCcpy(char* pszTarget, const unsigned char* pSource);

/// C to Pascal. At most 254 characters are taken, although the form could hold one more.
void CtoPcpy(unsigned char* pTarget, const char* pszSource);

/// strcmp of the Pascal string's characters against the C string, cut to 16 bits.
short PtoCcmp(const unsigned char* pFirst, const char* pszSecond);

void pstrcpy(unsigned char* pTarget, const unsigned char* pSource);

/// Copies at most nLimit characters. A negative limit stores its low byte as the length and copies
/// as many characters as its low 16 bits say, read as a signed number: with -1 none, so that the
/// target says 255 over the characters that it already had; with -65535 one. The source's length
/// bounds it.
void pstrcpyn(unsigned char* pTarget, const unsigned char* pSource, int nLimit);

/// Appends, up to 255 characters in all; what does not fit is dropped without report.
void pstrcat(unsigned char* pTarget, const unsigned char* pSource);

/// -1, 0 or 1. Bytes compare unsigned; of two strings that agree, the shorter sorts first.
short pstrcmp(const unsigned char* pFirst, const unsigned char* pSecond);

/// As pstrcmp, but folded by tolower and compared as signed bytes: bytes from 128 up sort below
/// plain ASCII here and above it in pstrcmp.
short pstrcmpi(const unsigned char* pFirst, const unsigned char* pSecond);

/// Whether the string ends with the ending, folded by toupper. Every string has the empty ending.
bool PStringEndCompare(const unsigned char* pString, const unsigned char* pEnding);

/// Bounds a C string. A text of at most nSize characters stays; a longer one is cut to nSize - 1,
/// so the size counts the terminator only when something is cut. A size below 1 empties the text.
void StringTruncate(char* pszString, int nSize);

/// Cuts to exactly nLimit characters. A limit below 0 empties the string.
void PStringTruncate(unsigned char* pString, int nLimit);

/// Case-sensitive search. pnPosition may be null; on a match it receives the index in the buffer
/// (the first character has 1), without one it receives 0, and it is left alone if the string is
/// shorter than the sought text. The last possible start is never tried: text at the very end of
/// the string is not found, nor is text equal to the whole string.
bool PStringContains(const unsigned char* pString, const unsigned char* pSought, int* pnPosition);

/// Replaces every occurrence of the token, starting over from the front after each one. The buffer
/// comes from new char[] and passes to the function: the caller goes on with the returned array,
/// which may be another one, and frees it with delete[]. Null if memory ran out; the buffer is
/// freed then. With a token that is empty or part of its replacement the text stays as it is: that
/// token would never be used up. Nor may the replacement bring the token about together with the
/// text around it, which is not looked for: "bbaa" for "ab" in "abb" never ends, and grows the text
/// until memory runs out.
char* substituteToken(const char* pszToken, char* pszBuffer, const char* pszReplacement);

/// Copies at most nSize - 1 characters and always writes a terminator, even for a size of 0 or
/// below: the target has room for one byte in any case.
void lstrcpyn(char* pszTarget, const char* pszSource, int nSize);
