// The step of a For that runs code of the program: asked once a turn, behind the body, as "+=" does it. Its sign
// tells on which side of the counter the end lies; only a loop that starts beyond its end asks before its first
// turn, and adds that step behind it.
template<typename T>
class KVStep {
public:
    explicit KVStep(bool down) : _value(), _written(down), _down(down), _met(false), _ahead(false) {}
    template<typename C, typename E, typename F>
    bool Leads(C counter, E end, F next) {
        if(_down ? counter >= end : counter <= end) return true;
        if(_met) return false;
        _ask(next);
        return _down != _written;
    }
    template<typename C, typename F>
    bool HasRoom(C counter, long long least, long long most, F next) {
        _ask(next);
        return _value < 0 ? counter >= least - _value : counter <= most - _value;
    }
    template<typename F>
    T Next(F next) {
        _ask(next);
        _ahead = false;
        return _value;
    }
private:
    T _value;
    bool _written, _down, _met, _ahead;
    template<typename F>
    void _ask(F next) {
        if(_ahead) return;
        _value = next();
        _down = _value == 0 ? _written : _value < 0;
        _met = _ahead = true;
    }
};

