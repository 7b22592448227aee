// Size of an array that a call gave, where it has to be the one that the declaration wrote.
inline int __kvResultSize(int given, int wanted, const char* name, int dimension, const char* function) {
    if(given == wanted) return given;
    std::cout.flush();
    std::cerr << "Array dimension size mismatch: Variable '" << name << "' dimension " << dimension << " is [" << wanted
              << "], but " << function << "() returns [" << given << "]" << std::endl;
    @End@(1);
}

