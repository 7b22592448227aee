// Lines that name other files: Include, Import, Linker.
#include "base/journal.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "collect/userlib_reader.h"
#include "linking/linker_flags.h"
#include "symbols/file_places.h"
#include "symbols/mistakes.h"
#include "symbols/program_files.h"

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
    const auto name = IncludedName(tokens);
    if (!name) return NoteUnreadFile(tokens[1]);
    pass.out.includes.push_back(*name);
    pass.goesOn = About(tokens.Slice(1, 2), [&pass, &name] { return pass.follow(*name); });
}
