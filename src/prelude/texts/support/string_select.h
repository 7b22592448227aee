// Case labels of a Select over text or Doubles: numbers that equal values have in common. They are
// folded in halves, so that no text is too long for a constant expression.
constexpr unsigned long long __kvMix(unsigned long long h, unsigned long long part) {
    return (h ^ part) * 1099511628211ULL;
}
constexpr unsigned long long __kvFold(unsigned long long h, const char* text, size_t begin, size_t end) {
    return begin == end ? h
         : end - begin == 1 ? __kvMix(h, (unsigned char)text[begin])
         : __kvFold(__kvFold(h, text, begin, begin + (end - begin) / 2), text, begin + (end - begin) / 2, end);
}
constexpr unsigned long long __kvTextKey(const char* text, size_t length) {
    return __kvFold(14695981039346656037ULL, text, 0, length);
}
template<size_t N>
constexpr unsigned long long __kvTextKey(const char (&text)[N]) { return __kvTextKey(text, N - 1); }
inline unsigned long long __kvTextKey(const std::string& text) {
    unsigned long long h = 14695981039346656037ULL;
    for(size_t i = 0; i < text.size(); ++i) h = __kvMix(h, (unsigned char)text[i]);
    return h;
}
// The whole part, the fraction and the exponent of a value scaled to lie between 1 and 2^64.
constexpr unsigned long long __kvScaledKey(double value, unsigned long long h) {
    return value >= 18446744073709551616.0 ? __kvScaledKey(value / 18446744073709551616.0, h + 1)
         : value < 1.0 ? __kvScaledKey(value * 18446744073709551616.0, h + 1000)
         : __kvMix(__kvMix(__kvMix(14695981039346656037ULL, (unsigned long long)value),
               (unsigned long long)((value - (double)(unsigned long long)value) * 9007199254740992.0)), h);
}
constexpr unsigned long long __kvNumberKey(double value) {
    return value == 0.0 ? 0
         : value != value ? 1
         : value > std::numeric_limits<double>::max() ? 2
         : value < -std::numeric_limits<double>::max() ? 3
         : value < 0.0 ? __kvScaledKey(-value, 1000000) : __kvScaledKey(value, 0);
}

