// Never destroyed, for std::cout writes to it to the very end; not on the heap, where it would push aside the objects
// of the program.
alignas(KVOutput) static char __kvOutputRoom[sizeof(KVOutput)];
static KVOutput& __kvOutput = *new (__kvOutputRoom) KVOutput();
