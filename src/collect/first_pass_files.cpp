// Lines that name other files: Include, Import, Linker.
#include "base/journal.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "collect/userlib_reader.h"
#include "linking/linker_flags.h"
#include "symbols/file_places.h"

static void SayDuplicate(const std::string& name) { VerboseNote("  - Skipping duplicate import: " + name); }

void CollectImport(FirstPass&, TokenSpan tokens) {
    const std::string name(Unquoted(tokens[1]));
    if (symbols.processedNames.count(name) != 0) return SayDuplicate(name);
    {
        const TellOnly first(Telling::First);
        VerboseNote("  - Importing userlib: " + name);
        ImportUserlib(PlacesOfUserlib(name));
    }
    const TellOnly second(Telling::Second);
    SayDuplicate(name);
    symbols.processedNames.insert(name);
    symbols.importedNames.insert(name);
}

void CollectLinker(FirstPass&, TokenSpan tokens) {
    const TellOnly first(Telling::First);
    AddLinkerFlag(tokens[1]);
}

void CollectInclude(FirstPass& pass, TokenSpan tokens) {
    if (!IsQuoted(tokens[1])) return;
    pass.out.includes.emplace_back(Unquoted(tokens[1]));
    pass.goesOn = pass.follow(pass.out.includes.back());
}
