; The C library's mathematics, for programs on Linux.
.lib "libm.so.6"
Hypotenuse#(x#, y#):"hypot"
Remainder#(x#, y#):"remainder"
LogGamma#(x#):"lgamma"
