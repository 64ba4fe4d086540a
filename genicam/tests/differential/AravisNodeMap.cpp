#include "AravisNodeMap.h"

extern "C" {
#include "ArvMemoryDevice.h"
}

#include <set>

namespace TALVIR::Tools {
namespace {
gboolean ReadRegisters(void* context, guint64 address, guint32 size, void* buffer) {
  return static_cast<CSparseRegisterSpace*>(context)->Read(buffer, address, size) ? TRUE : FALSE;
}

gboolean WriteRegisters(void* context, guint64 address, guint32 size, const void* buffer) {
  return static_cast<CSparseRegisterSpace*>(context)->Write(buffer, address, size) ? TRUE : FALSE;
}

// Runs one query; on failure records the message and leaves the field out. Besides the record's first error, the
// oracle keeps every field's own error under "field_errors", so that the differential test can tell which documented
// deviation of the comparison engine caused a missing field.
template <typename TQuery>
bool Query(nlohmann::ordered_json& record, const char* field, TQuery&& query) {
  GError* error = nullptr;
  query(&error);
  if (error == nullptr) return true;
  const std::string message = error->message != nullptr ? error->message : "error";
  CFeatureDump::NoteError(record, message);
  record["field_errors"][field] = message;
  g_clear_error(&error);
  return false;
}

// The feature's access mode, combined from the parts the comparison engine exposes by the standard's rules:
// not implemented, else not available, else the node's own mode with a lock removing write access. "implemented" and
// "available" then follow from the combined mode, as they do for a GenApi node (a locked write-only feature is not
// available).
std::string AccessOf(ArvGcFeatureNode* node, nlohmann::ordered_json& record) {
  gboolean implemented = FALSE;
  gboolean available = FALSE;
  gboolean locked = FALSE;
  const bool implementedKnown = Query(record, "implemented",
                                      [&](GError** e) { implemented = arv_gc_feature_node_is_implemented(node, e); });
  const bool availableKnown = Query(record, "available",
                                    [&](GError** e) { available = arv_gc_feature_node_is_available(node, e); });
  std::string access;
  if (!implemented) access = "NI";
  else if (!available) access = "NA";
  else {
    Query(record, "access", [&](GError** e) { locked = arv_gc_feature_node_is_locked(node, e); });
    switch (arv_gc_feature_node_get_actual_access_mode(node)) {
    case ARV_GC_ACCESS_MODE_RO: access = "RO"; break;
    case ARV_GC_ACCESS_MODE_WO: access = locked ? "NA" : "WO"; break;
    case ARV_GC_ACCESS_MODE_RW: access = locked ? "RO" : "RW"; break;
    default: access = "NA"; break;
    }
  }
  if (implementedKnown) record["implemented"] = access != "NI";
  if (availableKnown || !implemented) record["available"] = access != "NI" && access != "NA";
  return access;
}

void DumpValue(ArvGcFeatureNode* node, EValueKind kind, bool readable, nlohmann::ordered_json& record) {
  if (kind == EValueKind::Integer && ARV_IS_GC_INTEGER(node)) {
    auto* integer = ARV_GC_INTEGER(node);
    gint64 v = 0;
    if (readable && Query(record, "value", [&](GError** e) { v = arv_gc_integer_get_value(integer, e); }))
      record["value"] = v;
    if (Query(record, "min", [&](GError** e) { v = arv_gc_integer_get_min(integer, e); })) record["min"] = v;
    if (Query(record, "max", [&](GError** e) { v = arv_gc_integer_get_max(integer, e); })) record["max"] = v;
    if (Query(record, "inc", [&](GError** e) { v = arv_gc_integer_get_inc(integer, e); })) record["inc"] = v;
  } else if (kind == EValueKind::Float && ARV_IS_GC_FLOAT(node)) {
    auto* number = ARV_GC_FLOAT(node);
    double v = 0;
    if (readable && Query(record, "value", [&](GError** e) { v = arv_gc_float_get_value(number, e); }))
      record["value"] = FloatToJson(v);
    if (Query(record, "min", [&](GError** e) { v = arv_gc_float_get_min(number, e); })) record["min"] = FloatToJson(v);
    if (Query(record, "max", [&](GError** e) { v = arv_gc_float_get_max(number, e); })) record["max"] = FloatToJson(v);
    if (Query(record, "inc", [&](GError** e) { v = arv_gc_float_get_inc(number, e); })) record["inc"] = FloatToJson(v);
  } else if (!readable) return;
  else if (kind == EValueKind::Boolean && ARV_IS_GC_BOOLEAN(node)) {
    gboolean v = FALSE;
    if (Query(record, "value", [&](GError** e) { v = arv_gc_boolean_get_value(ARV_GC_BOOLEAN(node), e); }))
      record["value"] = v != FALSE;
  } else if (kind == EValueKind::Enumeration && ARV_IS_GC_ENUMERATION(node)) {
    const char* v = nullptr;
    if (Query(record, "value",
              [&](GError** e) { v = arv_gc_enumeration_get_string_value(ARV_GC_ENUMERATION(node), e); }))
      record["value"] = v != nullptr ? v : "";
  } else if (kind == EValueKind::String && ARV_IS_GC_STRING(node)) {
    // The engine allocates the whole declared length before reading, so strings backed by an over-long register
    // are refused up front. A string held in the description itself reports no limit.
    gint64 length = 0;
    if (!Query(record, "value", [&](GError** e) { length = arv_gc_string_get_max_length(ARV_GC_STRING(node), e); }))
      return;
    if (length != G_MAXINT64 && static_cast<uint64_t>(length) > CSparseRegisterSpace::kMaxAccessLength) {
      CFeatureDump::NoteError(record, "register longer than the register space serves");
      return;
    }
    const char* v = nullptr;
    if (Query(record, "value", [&](GError** e) { v = arv_gc_string_get_value(ARV_GC_STRING(node), e); }))
      record["value"] = v != nullptr ? v : "";
  } else if (kind == EValueKind::Register && ARV_IS_GC_REGISTER(node)) {
    auto* reg = ARV_GC_REGISTER(node);
    guint64 length = 0;
    if (!Query(record, "value", [&](GError** e) { length = arv_gc_register_get_length(reg, e); })) return;
    if (length > CSparseRegisterSpace::kMaxAccessLength) {
      CFeatureDump::NoteError(record, "register longer than the register space serves");
      return;
    }
    std::vector<uint8_t> bytes(length);
    if (Query(record, "value", [&](GError** e) { arv_gc_register_get(reg, bytes.data(), length, e); }))
      record["value"] = BytesToHex(bytes.data(), bytes.size());
  }
}

void DumpFeature(ArvGcFeatureNode* node, const std::string& element, CFeatureDump& dump) {
  const char* name = arv_gc_feature_node_get_name(node);
  nlohmann::ordered_json& record = dump.Add(name != nullptr ? name : "", element);
  const std::string access = AccessOf(node, record);
  record["access"] = access;
  if (access == "NI" || access == "NA") return;
  DumpValue(node, ValueKindOfElement(element), access == "RO" || access == "RW", record);
}

// Feature nodes sit under the root, inside Group elements (any depth) and, for StructEntry, inside StructReg (whose
// other children, such as an IntSwissKnife address part, are not features).
void Walk(ArvDomNode* parent, const std::set<std::string>* only, CFeatureDump& dump, bool entriesOnly = false) {
  for (ArvDomNode* child = arv_dom_node_get_first_child(parent); child != nullptr;
       child = arv_dom_node_get_next_sibling(child)) {
    const char* tag = arv_dom_node_get_node_name(child);
    if (tag == nullptr) continue;
    const std::string element = tag;
    if (entriesOnly && element != "StructEntry") continue;
    if (element == "Group" || element == "StructReg") {
      Walk(child, only, dump, element == "StructReg");
      continue;
    }
    if (ValueKindOfElement(element) == EValueKind::None || !ARV_IS_GC_FEATURE_NODE(child)) continue;
    auto* feature = ARV_GC_FEATURE_NODE(child);
    const char* name = arv_gc_feature_node_get_name(feature);
    if (name == nullptr || (only != nullptr && only->count(name) == 0)) continue;
    DumpFeature(feature, element, dump);
  }
}
}  // namespace

CAravisNodeMap::CAravisNodeMap(CSparseRegisterSpace& registers) : m_Registers(registers) {
  m_Device = talvir_arv_memory_device_new(ReadRegisters, WriteRegisters, &m_Registers);
}

CAravisNodeMap::~CAravisNodeMap() {
  if (m_Gc != nullptr) g_object_unref(m_Gc);
  g_object_unref(m_Device);
}

bool CAravisNodeMap::Load(const std::string& xml) {
  if (m_Gc != nullptr) return false;
  m_Gc = arv_gc_new(m_Device, xml.data(), xml.size());
  return m_Gc != nullptr && arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(m_Gc)) != nullptr;
}

std::string CAravisNodeMap::SetFromString(const std::string& name, const std::string& value) {
  ArvGcNode* node = arv_gc_get_node(m_Gc, name.c_str());
  if (node == nullptr || !ARV_IS_GC_FEATURE_NODE(node)) return "no such feature";
  GError* error = nullptr;
  arv_gc_feature_node_set_value_from_string(ARV_GC_FEATURE_NODE(node), value.c_str(), &error);
  if (error == nullptr) return {};
  std::string message = error->message != nullptr ? error->message : "error";
  g_clear_error(&error);
  return message;
}

void CAravisNodeMap::Dump(CFeatureDump& dump, const std::vector<std::string>& only) const {
  ArvDomElement* root = arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(m_Gc));
  if (root == nullptr) return;
  const std::set<std::string> wanted(only.begin(), only.end());
  Walk(ARV_DOM_NODE(root), only.empty() ? nullptr : &wanted, dump);
  for (const std::string& name : wanted)
    if (!dump.Has(name))
      CFeatureDump::NoteError(dump.Add(name, ""), arv_gc_get_node(m_Gc, name.c_str()) == nullptr
                                                      ? "no such feature"
                                                      : "the node has no value to show");
}

void CAravisNodeMap::SetRegisterCache(bool enabled) {
  arv_gc_set_register_cache_policy(m_Gc,
                                   enabled ? ARV_REGISTER_CACHE_POLICY_ENABLE : ARV_REGISTER_CACHE_POLICY_DISABLE);
}

bool CAravisNodeMap::ReadInteger(const std::string& name, int64_t& value) const {
  void* node = FindInteger(name);
  return node != nullptr && ReadIntegerNode(node, value);
}

void* CAravisNodeMap::FindInteger(const std::string& name) const {
  ArvGcNode* node = arv_gc_get_node(m_Gc, name.c_str());
  return node != nullptr && ARV_IS_GC_INTEGER(node) ? node : nullptr;
}

bool CAravisNodeMap::ReadIntegerNode(void* node, int64_t& value) {
  GError* error = nullptr;
  value = arv_gc_integer_get_value(ARV_GC_INTEGER(node), &error);
  if (error == nullptr) return true;
  g_clear_error(&error);
  return false;
}
}  // namespace TALVIR::Tools
