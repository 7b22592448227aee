// Programs that are compiled in several units (kv/units.h), when the translation has made some.
//
//   .kvbuild/game.kvl/fast-O0/units/     in the build folder
//       unit-HASH.o, batch-HASH.o        objects, by what they are made of; HASH.d tells what was read
//       record, stamp                    which objects hold what, and what they depend on together
//       refused                          the units that could not be compiled or linked
#pragma once

#include "kv/job.h"
#include "kv/toolchain.h"

// Whether units are asked for: for programs that are to run soon, where this is known to work.
bool ComesInUnits(const Options& options);

// Compiles what has changed of the units, and links. Returns false, and has told nothing, where there are none or where
// that fails: then the program has to be compiled as one.
bool MakeFromUnits(Job& job, const CompileJob& compile);
