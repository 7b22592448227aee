// Checked division and remainder of operands of two types, and the remainder of Doubles.
inline double KVL_SafeMod(double a, double b) {
    if(b == 0) {
        std::cerr << "Modulo by zero error" << std::endl;
        exit(1);
    }
    return std::fmod(a, b);
}
template<typename A, typename B>
typename std::common_type<A, B>::type KVL_SafeDiv(A a, B b) {
    typedef typename std::common_type<A, B>::type Common;
    return KVL_SafeDiv((Common)a, (Common)b);
}
template<typename A, typename B>
typename std::common_type<A, B>::type KVL_SafeMod(A a, B b) {
    typedef typename std::common_type<A, B>::type Common;
    return KVL_SafeMod((Common)a, (Common)b);
}

