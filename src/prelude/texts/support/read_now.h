// The value that a variable has now, before the operand behind it is worked out.
template<typename T>
inline T __kvNow(const T& value) { return value; }

