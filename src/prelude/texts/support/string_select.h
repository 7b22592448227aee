// Select over text or Doubles: the index of the first label equal to the value, -1 when there is none.
// The switch runs over the index, so cases run into each other as they do for integers.
struct KVLabel {
    const char* text;
    KVLabel(const char* label) : text(label) {}
    KVLabel(const std::string& label) : text(label.c_str()) {}
};
inline int __kvSelect(const std::string& value, std::initializer_list<KVLabel> labels) {
    int index = 0;
    for(const KVLabel& label : labels) {
        if(value == label.text) return index;
        ++index;
    }
    return -1;
}
inline int __kvSelect(double value, std::initializer_list<double> labels) {
    int index = 0;
    for(double label : labels) {
        if(value == label) return index;
        ++index;
    }
    return -1;
}

