
 // Instance tracking: every object registers itself and can be reached from its Type
