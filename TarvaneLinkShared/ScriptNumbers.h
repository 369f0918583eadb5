#pragma once

// Numbers as scripts print and take them, the same in every locale of C and of C++.

/// The leading decimal integer of a text, as atol reads it: blanks, a sign, digits; 0 if there is
/// none. Beyond the type the nearest number that it holds.
long LongFromText(const char* szText);
long long LongLongFromText(const char* szText);
int IntFromText(const char* szText);

/// The leading number of a text, as atof reads it with a decimal point.
double DoubleFromText(const char* szText);

/// A sample position cut toward zero. Beyond 64 bits the nearest 64-bit number; 0 for NaN.
long long WholeSamples(double dPosition);
