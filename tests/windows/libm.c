/* Stands in for the C library of Linux that cmath.decls names. */
#include <math.h>

__declspec(dllexport) double __stdcall kv_hypot(double x, double y) { return hypot(x, y); }
__declspec(dllexport) double __stdcall kv_remainder(double x, double y) { return remainder(x, y); }
__declspec(dllexport) double __stdcall kv_lgamma(double x) { return lgamma(x); }
