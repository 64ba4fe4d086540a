# Writes a C++ file that holds the description files as strings: cmake -DOUTPUT=x.cpp -DINPUTS="a.xml;b.xml" -P EmbedXml.cmake
# The text is stored as byte arrays, which have no length limit in any compiler.
set(body "")
set(table "")
set(index 0)
foreach(input ${INPUTS})
  get_filename_component(name ${input} NAME)
  file(READ ${input} hex HEX)
  string(LENGTH "${hex}" hexLength)
  math(EXPR byteCount "${hexLength} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
  string(APPEND body "const unsigned char kFile${index}[] = {\n${bytes}0};\n")
  string(APPEND table "      {\"${name}\", std::string(reinterpret_cast<const char*>(kFile${index}), ${byteCount})},\n")
  math(EXPR index "${index} + 1")
endforeach()
file(WRITE ${OUTPUT}.tmp "// Generated from producers/sim/xml by EmbedXml.cmake; do not edit.
#include <map>
#include <string>

namespace TalvirSim {
namespace {
${body}
} // namespace

const std::map<std::string, std::string>& EmbeddedXmlFiles() {
  static const std::map<std::string, std::string> files = {
${table}  };
  return files;
}

} // namespace TalvirSim
")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
