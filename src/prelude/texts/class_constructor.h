
 // Instance tracking: every object registers itself and can be reached from its Type
 @C@() { _instances.push_back(this); }
