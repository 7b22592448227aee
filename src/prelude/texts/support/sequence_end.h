// Tells the loops that walk over a Sequence when it goes together with the object that holds it.
struct KVSeqEnd {
    struct Walk { const KVSeqEnd* walked; Walk* outer; };
    static Walk*& Innermost() { static Walk* innermost = nullptr; return innermost; }
    ~KVSeqEnd() { for(Walk* walk = Innermost(); walk != nullptr; walk = walk->outer) if(walk->walked == this) walk->walked = nullptr; }
};
