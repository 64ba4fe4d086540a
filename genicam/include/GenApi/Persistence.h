#pragma once
// Saved settings: a device's configuration as text, written from a node map and loaded back into one.
//
//   gcstring text = GenApi::SaveFeatures(*nodeMap);            // one "Name<TAB>Value" line per setting
//   GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(*nodeMap, text);
//   for (const GenApi::SFeatureIssue& issue : result.Failures) { ... issue.Reason ... }
//
// The text format: UTF-8 lines; a line starting with '#' and an empty line are comments; every other line is a feature
// name, one TAB and the feature's value in its string form (enumerations by symbolic name, floats in shortest
// round-trip form, registers as 0x-prefixed hexadecimal bytes). In values, a backslash, TAB, line feed and carriage
// return are written as \\, \t, \n and \r. A selector's lines come before the lines of the features it selects, once
// per selector value, and the selector's own value as found comes last, so that loading the file in order restores
// every selected value and leaves the selector where it was.
#include <cstddef>
#include <vector>

#include <GenApi/INodeMap.h>

namespace GenApi {

// Which features SaveFeatures writes (always only those that are readable and writable at that moment).
enum EFeatureSelection {
  fsStreamable,  // the features the description marks Streamable: the device's settings, as its maker sees them
  fsAllWritable  // every feature under the Root category, whether marked Streamable or not (descriptions that mark
                 // nothing Streamable)
};

// A feature that could not be saved or loaded.
struct SFeatureIssue {
  size_t Line = 0;  // line of the settings text (LoadFeatures), 0 for SaveFeatures
  gcstring Name;
  gcstring Value;   // the value as written in the text (LoadFeatures)
  gcstring Reason;  // the engine's message, or what was wrong with the line
};

struct CFeatureLoadResult {
  size_t Applied = 0;                   // lines whose value was set
  std::vector<SFeatureIssue> Failures;  // lines that could not be set, in text order
};

// Writes the settings of the node map. Selectors are set to each of their values while saving and put back as they
// were; the node map's lock is held throughout. Features whose value cannot be read are left out and, when `skipped`
// is given, listed there.
GENICAM_API gcstring SaveFeatures(INodeMap& nodeMap, EFeatureSelection selection = fsStreamable,
                                  std::vector<SFeatureIssue>* skipped = nullptr);

// Sets every feature named in the text, in order; a line that fails is reported and loading goes on. Settings that
// depend on each other (a width that fits only after an offset shrinks) are tried again in further passes while each
// pass sets more lines than the one before, at most four passes; the failures of the last pass are reported.
GENICAM_API CFeatureLoadResult LoadFeatures(INodeMap& nodeMap, const gcstring& text);

// The escaping of values in the settings text, for tools that read or write such files themselves.
GENICAM_API gcstring EscapeFeatureValue(const gcstring& value);
// False for a backslash followed by anything but \, t, n or r, or a trailing backslash.
GENICAM_API bool UnescapeFeatureValue(const gcstring& text, gcstring& value);

}  // namespace GenApi
