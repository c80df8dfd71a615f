#pragma once

/// The natural logarithm, correctly rounded: the double nearest to the true value, to even where
/// two are. A C library's logarithm misses it now and then, and not on every processor alike; this
/// one is made of integers and of additions and multiplications that round in one way only.

/// -infinity for 0, no number below it and for what is none, infinity for infinity.
double CorrectLog(double x) noexcept;

/// The logarithm of a float, rounded to double and from there to float. The second rounding hides
/// behind the first, but where the double is the very middle of two floats.
float CorrectLog(float x) noexcept;
