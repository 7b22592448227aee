// Checked division and remainder of operands of two types or with calls on both sides, and the remainder of
// Doubles.
inline double @SafeMod@(double a, double b) {
    if(b == 0) {
        std::cerr << "Modulo by zero error" << std::endl;
        @End@(1);
    }
    return std::fmod(a, b);
}
template<typename A, typename B>
typename std::common_type<A, B>::type @SafeDiv@(A a, B b) {
    typedef typename std::common_type<A, B>::type Common;
    return @SafeDiv@((Common)a, (Common)b);
}
template<typename A, typename B>
typename std::common_type<A, B>::type @SafeMod@(A a, B b) {
    typedef typename std::common_type<A, B>::type Common;
    return @SafeMod@((Common)a, (Common)b);
}
// Two operands that run code of the program, the left one first.
template<typename T>
struct __kvInOrder {
    T a, b;
    T Quotient() const { return @SafeDiv@(a, b); }
    T Remainder() const { return @SafeMod@(a, b); }
};

