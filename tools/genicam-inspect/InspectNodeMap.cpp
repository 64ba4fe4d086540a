#include "InspectNodeMap.h"

#include "DescriptionScan.h"

#include <set>

namespace TALVIR::Tools {
namespace {
// Runs one query; a GenICam exception becomes the record's error and leaves the field out.
template <typename TQuery>
bool Query(nlohmann::ordered_json& record, TQuery&& query) {
  try {
    query();
    return true;
  } catch (const GenICam::GenericException& e) {
    CFeatureDump::NoteError(record, e.GetDescription());
  } catch (const std::exception& e) {
    CFeatureDump::NoteError(record, e.what());
  }
  return false;
}

bool TooLongForTheRegisterSpace(int64_t length) {
  return length < 0 || static_cast<uint64_t>(length) > CSparseRegisterSpace::kMaxAccessLength;
}

void DumpValue(GenApi::INode* node, EValueKind kind, bool readable, nlohmann::ordered_json& record) {
  using namespace GenApi;
  if (kind == EValueKind::Integer) {
    CIntegerPtr integer(node);
    if (!integer.IsValid()) return CFeatureDump::NoteError(record, "node has no integer interface");
    if (readable) Query(record, [&] { record["value"] = integer->GetValue(); });
    Query(record, [&] { record["min"] = integer->GetMin(); });
    Query(record, [&] { record["max"] = integer->GetMax(); });
    Query(record, [&] { record["inc"] = integer->GetInc(); });
  } else if (kind == EValueKind::Float) {
    CFloatPtr number(node);
    if (!number.IsValid()) return CFeatureDump::NoteError(record, "node has no float interface");
    if (readable) Query(record, [&] { record["value"] = FloatToJson(number->GetValue()); });
    Query(record, [&] { record["min"] = FloatToJson(number->GetMin()); });
    Query(record, [&] { record["max"] = FloatToJson(number->GetMax()); });
    // A float without an increment has none to report.
    Query(record, [&] {
      if (number->HasInc()) record["inc"] = FloatToJson(number->GetInc());
    });
  } else if (!readable) return;
  else if (kind == EValueKind::Boolean) {
    CBooleanPtr boolean(node);
    if (!boolean.IsValid()) return CFeatureDump::NoteError(record, "node has no boolean interface");
    Query(record, [&] { record["value"] = boolean->GetValue(); });
  } else if (kind == EValueKind::Enumeration) {
    CEnumerationPtr enumeration(node);
    if (!enumeration.IsValid()) return CFeatureDump::NoteError(record, "node has no enumeration interface");
    Query(record, [&] { record["value"] = std::string(enumeration->ToString()); });
  } else if (kind == EValueKind::String) {
    CStringPtr text(node);
    if (!text.IsValid()) return CFeatureDump::NoteError(record, "node has no string interface");
    // A string backed by a register whose seeded length is absurd is refused before anything is allocated.
    // A string held in the description itself reports no limit.
    int64_t length = 0;
    if (!Query(record, [&] { length = text->GetMaxLength(); })) return;
    if (length != INT64_MAX && TooLongForTheRegisterSpace(length))
      return CFeatureDump::NoteError(record, "register longer than the register space serves");
    Query(record, [&] { record["value"] = std::string(text->GetValue()); });
  } else if (kind == EValueKind::Register) {
    CRegisterPtr reg(node);
    if (!reg.IsValid()) return CFeatureDump::NoteError(record, "node has no register interface");
    int64_t length = 0;
    if (!Query(record, [&] { length = reg->GetLength(); })) return;
    if (TooLongForTheRegisterSpace(length))
      return CFeatureDump::NoteError(record, "register longer than the register space serves");
    std::vector<uint8_t> bytes(static_cast<size_t>(length));
    Query(record, [&] {
      reg->Get(bytes.data(), length);
      record["value"] = BytesToHex(bytes.data(), bytes.size());
    });
  }
}
}  // namespace

CInspectNodeMap::CInspectNodeMap(CSparseRegisterSpace& registers) : m_Port(registers) {}

void CInspectNodeMap::Load(const std::string& bytes) {
  if (LooksLikeZip(bytes)) {
    m_NodeMap._LoadXMLFromZIPData(bytes.data(), bytes.size());
    m_Elements = ScanValueElements(FirstFileOfZip(bytes));
  } else {
    m_NodeMap._LoadXMLFromString(bytes);
    m_Elements = ScanValueElements(bytes);
  }
  ConnectDevicePorts();
}

void CInspectNodeMap::ConnectDevicePorts() {
  GenApi::NodeList_t nodes;
  m_NodeMap._GetNodes(nodes);
  for (GenApi::INode* node : nodes) {
    if (node->GetPrincipalInterfaceType() != GenApi::intfIPort) continue;
    GenICam::gcstring value;
    GenICam::gcstring attribute;
    const bool chunkPort = node->GetProperty("ChunkID", value, attribute) ||
                           node->GetProperty("pChunkID", value, attribute);
    if (chunkPort || !node->GetEventID().empty()) continue;
    if (m_NodeMap._Connect(&m_Port, node->GetName())) ++m_ConnectedPorts;
  }
}

std::string CInspectNodeMap::SetFromString(const std::string& name, const std::string& value) {
  GenApi::CValuePtr node(m_NodeMap._GetNode(name));
  if (!node.IsValid()) return "no such feature";
  try {
    node->FromString(value);
    return {};
  } catch (const GenICam::GenericException& e) {
    return e.GetDescription();
  }
}

void CInspectNodeMap::Dump(CFeatureDump& dump, const std::vector<std::string>& only) {
  if (only.empty()) {
    for (const auto& [name, element] : m_Elements) DumpFeature(name, element, dump);
    return;
  }
  for (const std::string& name : std::set<std::string>(only.begin(), only.end())) {
    const auto it = m_Elements.find(name);
    if (it != m_Elements.end()) DumpFeature(name, it->second, dump);
    else
      CFeatureDump::NoteError(dump.Add(name, ""), m_NodeMap._GetNode(name) == nullptr
                                                      ? "no such feature"
                                                      : "the node has no value to show");
  }
}

void CInspectNodeMap::DumpFeature(const std::string& name, const std::string& element, CFeatureDump& dump) {
  nlohmann::ordered_json& record = dump.Add(name, element);
  GenApi::INode* node = m_NodeMap._GetNode(name);
  if (node == nullptr) return CFeatureDump::NoteError(record, "the node map has no node of this name");
  GenApi::EAccessMode mode = GenApi::NI;
  if (!Query(record, [&] { mode = node->GetAccessMode(); })) return;
  record["implemented"] = GenApi::IsImplemented(mode);
  record["available"] = GenApi::IsAvailable(mode);
  record["access"] = GenApi::AccessModeName(mode);
  if (!GenApi::IsAvailable(mode)) return;
  DumpValue(node, ValueKindOfElement(element), GenApi::IsReadable(mode), record);
}
}  // namespace TALVIR::Tools
