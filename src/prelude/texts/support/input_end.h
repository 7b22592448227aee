// Input asks again until it gets a number, behind the end of the input too. There the first look makes the
// number invalid; the next one, which passes over the rest of the line, ends the program.
class KVInputEnd : public std::streambuf {
public:
    explicit KVInputEnd(std::streambuf* own) : _own(own), _met(false) {}
protected:
    int_type underflow() { return _noted(_own->sgetc()); }
    int_type uflow() { return _noted(_own->sbumpc()); }
    int_type pbackfail(int_type c) {
        return traits_type::eq_int_type(c, traits_type::eof()) ? _own->sungetc()
                                                               : _own->sputbackc(traits_type::to_char_type(c));
    }
    std::streamsize showmanyc() { return _own->in_avail(); }
    int sync() { return _own->pubsync(); }
private:
    std::streambuf* _own;
    bool _met;
    int_type _noted(int_type c) {
        if(!traits_type::eq_int_type(c, traits_type::eof())) return c;
        if(_met) { std::cerr << "Input has ended" << std::endl; @End@(1); }
        _met = true;
        return c;
    }
    KVInputEnd(const KVInputEnd&);
    KVInputEnd& operator=(const KVInputEnd&);
};
struct KVInputWatch {
    KVInputWatch() { std::cin.rdbuf(new KVInputEnd(std::cin.rdbuf())); }
};
