// The value that an operand has now, before the one behind it is worked out.
template<typename T>
inline T __kvNow(const T& value) { return value; }

