#pragma once
// The comparison engine does not apply a StructReg's pIsImplemented, pIsAvailable and pIsLocked to its entries,
// although every element of a StructReg is shared by all its StructEntry children. Before the oracle loads a
// description, those elements are copied into each entry that lacks them, so that its answers follow the rule.
#include <string>

namespace TALVIR::Tools {
// Returns the description with the shared access elements copied into every StructEntry; the text is returned
// unchanged when it cannot be parsed (the engine then reports the error itself). Sets `changedEntries` when given.
std::string CopyStructRegAccessElementsToEntries(const std::string& xml, size_t* changedEntries = nullptr);
}  // namespace TALVIR::Tools
