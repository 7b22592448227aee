 @C@() { _instances.push_back(this); }
