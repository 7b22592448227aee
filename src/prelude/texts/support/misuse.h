// What a function of a module was given and cannot use: told once for each place. It goes on as the manual says. Each
// % of the text is one of the numbers.
#if defined(__GNUC__)
__attribute__((noinline, cold))
#endif
inline void __kvMisuse(const char* text, long long first = 0, long long second = 0) {
    std::string message;
    for(int numbers = 0; *text; ++text) {
        if(*text == '%') message += std::to_string(numbers++ == 0 ? first : second);
        else message += *text;
    }
    std::cout.flush();
#ifdef KV_FAILURE_H
    __kvWarn(message.c_str());
#else
    static std::vector<std::string> told;
    for(const std::string& before : told) if(before == message) return;
    told.push_back(message);
    std::cerr << "warning: " << message << std::endl;
#endif
}
#define KV_MISUSE(condition, ...) if(condition) __kvMisuse(__VA_ARGS__)
