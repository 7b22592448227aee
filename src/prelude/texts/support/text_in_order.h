// Strings whose parts are calls: what stands between braces is worked out from left to right.
inline std::string __kvText(std::initializer_list<std::string> parts) {
    std::string text;
    for(const std::string& part : parts) text += part;
    return text;
}
struct __kvTexts {
    std::string a, b;
    int Order() const { return a.compare(b); }
};

