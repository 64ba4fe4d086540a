// The description loader. Three passes over the parsed document: create every node (so that references can point
// forward), configure each node from its elements, finish (compile formulas, defaults). Then the graph is checked
// for reference cycles and registers sharing an address are grouped for invalidation.
#include "load/Loader.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

#include <GCBase/GCException.h>

#include "base/NumberParsing.h"
#include "nodes/Boolean.h"
#include "nodes/Category.h"
#include "nodes/Command.h"
#include "nodes/Converter.h"
#include "nodes/Enumeration.h"
#include "nodes/Float.h"
#include "nodes/FloatReg.h"
#include "nodes/IntConverter.h"
#include "nodes/IntReg.h"
#include "nodes/IntSwissKnife.h"
#include "nodes/Integer.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"
#include "nodes/PlainNode.h"
#include "nodes/Port.h"
#include "nodes/RawRegister.h"
#include "nodes/String.h"
#include "nodes/StringReg.h"
#include "nodes/SwissKnife.h"
#include "xml/XmlDocument.h"

namespace GenApi {
namespace Engine {

namespace {

enum class EKind {
  Unknown,
  Group,
  Integer,
  IntReg,
  MaskedIntReg,
  Float,
  FloatReg,
  Boolean,
  Command,
  Enumeration,
  String,
  StringReg,
  Register,
  StructReg,
  SwissKnife,
  IntSwissKnife,
  Converter,
  IntConverter,
  Category,
  Port,
  Plain
};

EKind KindOf(std::string_view name) {
  static const std::unordered_map<std::string_view, EKind> kKinds = {{"Group", EKind::Group},
                                                                     {"Integer", EKind::Integer},
                                                                     {"IntReg", EKind::IntReg},
                                                                     {"MaskedIntReg", EKind::MaskedIntReg},
                                                                     {"Float", EKind::Float},
                                                                     {"FloatReg", EKind::FloatReg},
                                                                     {"Boolean", EKind::Boolean},
                                                                     {"Command", EKind::Command},
                                                                     {"Enumeration", EKind::Enumeration},
                                                                     {"String", EKind::String},
                                                                     {"StringReg", EKind::StringReg},
                                                                     {"Register", EKind::Register},
                                                                     {"StructReg", EKind::StructReg},
                                                                     {"SwissKnife", EKind::SwissKnife},
                                                                     {"IntSwissKnife", EKind::IntSwissKnife},
                                                                     {"Converter", EKind::Converter},
                                                                     {"IntConverter", EKind::IntConverter},
                                                                     {"Category", EKind::Category},
                                                                     {"Port", EKind::Port},
                                                                     {"ConfRom", EKind::Plain},
                                                                     {"TextDesc", EKind::Plain},
                                                                     {"IntKey", EKind::Plain},
                                                                     {"AdvFeatureLock", EKind::Plain},
                                                                     {"SmartFeature", EKind::Plain},
                                                                     {"Node", EKind::Plain}};
  const auto it = kKinds.find(name);
  return it == kKinds.end() ? EKind::Unknown : it->second;
}

std::unique_ptr<CNode> MakeNode(EKind kind, CNodeMapImpl& map, std::string name) {
  switch (kind) {
  case EKind::Integer: return std::make_unique<CIntegerNode>(map, std::move(name));
  case EKind::IntReg: return std::make_unique<CIntRegNode>(map, std::move(name), false);
  case EKind::MaskedIntReg: return std::make_unique<CIntRegNode>(map, std::move(name), true);
  case EKind::Float: return std::make_unique<CFloatNode>(map, std::move(name));
  case EKind::FloatReg: return std::make_unique<CFloatRegNode>(map, std::move(name));
  case EKind::Boolean: return std::make_unique<CBooleanNode>(map, std::move(name));
  case EKind::Command: return std::make_unique<CCommandNode>(map, std::move(name));
  case EKind::Enumeration: return std::make_unique<CEnumerationNode>(map, std::move(name));
  case EKind::String: return std::make_unique<CStringNode>(map, std::move(name));
  case EKind::StringReg: return std::make_unique<CStringRegNode>(map, std::move(name));
  case EKind::Register: return std::make_unique<CRawRegisterNode>(map, std::move(name));
  case EKind::SwissKnife: return std::make_unique<CSwissKnifeNode>(map, std::move(name));
  case EKind::IntSwissKnife: return std::make_unique<CIntSwissKnifeNode>(map, std::move(name));
  case EKind::Converter: return std::make_unique<CConverterNode>(map, std::move(name));
  case EKind::IntConverter: return std::make_unique<CIntConverterNode>(map, std::move(name));
  case EKind::Category: return std::make_unique<CCategoryNode>(map, std::move(name));
  case EKind::Port: return std::make_unique<CPortNode>(map, std::move(name));
  case EKind::Plain: return std::make_unique<CPlainNode>(map, std::move(name));
  default: return nullptr;
  }
}

struct CPending {
  CNode* node;
  CXmlElement element;
  CXmlElement shared;  // StructReg entries: the StructReg element, configured first
};

constexpr int kMaxGroupNesting = 64;

class CLoader {
public:
  CLoader(CNodeMapImpl& map, CLoadContext& context) : m_map(map), m_context(context) {}

  void CreateNodes(const CXmlElement& parent, int nesting) {
    if (nesting > kMaxGroupNesting) m_context.Fail(nullptr, parent, "groups nested too deeply");
    for (CXmlElement child = parent.FirstChild(); child; child = child.NextSibling()) {
      const EKind kind = KindOf(child.Name());
      if (kind == EKind::Unknown) continue;
      if (kind == EKind::Group) {
        CreateNodes(child, nesting + 1);
        continue;
      }
      if (kind == EKind::StructReg) {
        for (CXmlElement entry = child.Child("StructEntry"); entry; entry = entry.NextSibling("StructEntry")) {
          CNode* node = Add(std::make_unique<CIntRegNode>(m_map, NodeName(entry), true), entry);
          m_pending.push_back({node, entry, child});
        }
        continue;
      }
      const std::string name = NodeName(child);
      CNode* node = Add(MakeNode(kind, m_map, name), child);
      m_pending.push_back({node, child, CXmlElement()});
      if (kind == EKind::Enumeration) {
        auto* enumeration = static_cast<CEnumerationNode*>(node);
        for (CXmlElement entry = child.Child("EnumEntry"); entry; entry = entry.NextSibling("EnumEntry")) {
          const std::string symbolic = NodeName(entry);
          auto entryNode = std::make_unique<CEnumEntryNode>(m_map, "EnumEntry_" + name + "_" + symbolic, symbolic);
          auto* raw = static_cast<CEnumEntryNode*>(Add(std::move(entryNode), entry));
          enumeration->AddEntry(raw);
          m_pending.push_back({raw, entry, CXmlElement()});
        }
      }
    }
  }

  void Configure() {
    for (const CPending& pending : m_pending) {
      if (pending.shared) pending.node->Configure(m_context, pending.shared);
      pending.node->Configure(m_context, pending.element);
    }
  }

  void Finish() {
    auto& all = m_map.AllNodes();
    for (size_t i = 0; i < all.size(); ++i) all[i]->FinishLoading(m_context);
  }

private:
  std::string NodeName(const CXmlElement& element) {
    const std::string_view name = TrimSpaces(element.Attribute("Name"));
    if (name.empty()) m_context.Fail(nullptr, element, "node without Name attribute");
    return std::string(name);
  }

  CNode* Add(std::unique_ptr<CNode> node, const CXmlElement& element) {
    CNode* raw = node.get();
    if (m_map.Find(raw->Name()) != nullptr) m_context.Fail(raw, element, "duplicate node name");
    m_map.AddNode(std::move(node), true);
    return raw;
  }

  CNodeMapImpl& m_map;
  CLoadContext& m_context;
  std::vector<CPending> m_pending;
};

// Marks every node reachable from the Root category as a feature.
void MarkFeatures(CNodeMapImpl& map) {
  auto* root = dynamic_cast<CCategoryNode*>(map.Find("Root"));
  if (root == nullptr) return;
  std::vector<CNode*> stack{root};
  root->m_isFeature = true;
  while (!stack.empty()) {
    CNode* node = stack.back();
    stack.pop_back();
    auto* category = dynamic_cast<CCategoryNode*>(node);
    if (category == nullptr) continue;
    for (CNode* feature : category->Features()) {
      if (feature->m_isFeature) continue;
      feature->m_isFeature = true;
      stack.push_back(feature);
    }
  }
}

// Depth-first search without recursion; a grey node reached again closes a cycle.
void CheckCycles(CNodeMapImpl& map) {
  auto& all = map.AllNodes();
  for (auto& owned : all) owned->m_walkState = 0;
  auto colour = [](CNode* node) -> uint8_t& { return node->m_walkState; };
  struct CFrame {
    CNode* node;
    size_t next;
  };
  std::vector<CFrame> stack;
  for (auto& owned : all) {
    CNode* start = owned.get();
    if (colour(start) != 0) continue;
    stack.push_back({start, 0});
    colour(start) = 1;
    while (!stack.empty()) {
      CFrame& frame = stack.back();
      if (frame.next >= frame.node->m_readingChildren.size()) {
        colour(frame.node) = 2;
        stack.pop_back();
        continue;
      }
      CNode* child = frame.node->m_readingChildren[frame.next++];
      const uint8_t state = colour(child);
      if (state == 0) {
        colour(child) = 1;
        stack.push_back({child, 0});
      } else if (state == 1) {
        std::string path;
        bool inCycle = false;
        for (const CFrame& f : stack) {
          inCycle = inCycle || f.node == child;
          if (inCycle && path.size() < 2000) path += f.node->Name() + " -> ";
        }
        path += child->Name();
        throw RUNTIME_EXCEPTION("Reference cycle: %s", path.c_str());
      }
    }
  }
}

// A node's access mode may be remembered when no node below it is volatile. The graph is acyclic here.
void MarkAccessCacheable(CNodeMapImpl& map) {
  // m_walkState: 0 unknown, 1 in progress, 2 stable, 3 volatile
  for (auto& owned : map.AllNodes()) owned->m_walkState = 0;
  auto state = [](CNode* node) -> uint8_t& { return node->m_walkState; };
  struct CFrame {
    CNode* node;
    size_t next;
  };
  std::vector<CFrame> stack;
  for (auto& owned : map.AllNodes()) {
    if (state(owned.get()) != 0) continue;
    stack.push_back({owned.get(), 0});
    state(owned.get()) = 1;
    while (!stack.empty()) {
      CFrame& frame = stack.back();
      if (frame.next < frame.node->m_readingChildren.size()) {
        CNode* child = frame.node->m_readingChildren[frame.next++];
        if (state(child) == 0) {
          state(child) = 1;
          stack.push_back({child, 0});
        }
        continue;
      }
      bool isVolatile = frame.node->IsVolatile();
      for (CNode* child : frame.node->m_readingChildren) isVolatile = isVolatile || state(child) != 2;
      state(frame.node) = isVolatile ? 3 : 2;
      frame.node->m_accessCacheable = !isVolatile;
      stack.pop_back();
    }
  }
}

// Registers whose fixed byte ranges overlap on the same port see each other's writes: they share an invalidation
// group (same address, or one register inside or across another).
void GroupRegisters(CNodeMapImpl& map) {
  struct CRange {
    const CPortNode* port;
    int64_t begin;
    int64_t end;
    CNode* node;
  };
  std::vector<CRange> ranges;
  for (auto& owned : map.AllNodes()) {
    CRegisterCore* reg = owned->RegisterCore();
    if (reg == nullptr || !reg->HasFixedAddress() || reg->Port() == nullptr) continue;
    const int64_t begin = reg->FixedAddress();
    const int64_t length = std::max<int64_t>(reg->FixedLength(), 1);
    const int64_t end = begin > INT64_MAX - length ? INT64_MAX : begin + length;
    ranges.push_back({reg->Port(), begin, end, owned.get()});
  }
  std::sort(ranges.begin(), ranges.end(), [](const CRange& a, const CRange& b) {
    return a.port != b.port ? std::less<const CPortNode*>()(a.port, b.port) : a.begin < b.begin;
  });
  size_t first = 0;
  while (first < ranges.size()) {
    size_t last = first + 1;
    int64_t end = ranges[first].end;
    while (last < ranges.size() && ranges[last].port == ranges[first].port && ranges[last].begin < end) {
      end = std::max(end, ranges[last].end);
      ++last;
    }
    if (last - first >= 2) {
      auto group = std::make_unique<std::vector<CNode*>>();
      for (size_t i = first; i < last; ++i) group->push_back(ranges[i].node);
      for (CNode* node : *group) node->m_pAddressGroup = group.get();
      map.AddressGroups().push_back(std::move(group));
    }
    first = last;
  }
}

void ReadRootAttributes(CNodeMapImpl& map, const CXmlElement& root) {
  map.m_modelName = std::string(root.Attribute("ModelName"));
  map.m_vendorName = std::string(root.Attribute("VendorName"));
  map.m_toolTip = std::string(root.Attribute("ToolTip"));
  const std::string_view nameSpace = root.Attribute("StandardNameSpace");
  if (nameSpace == "GEV") map.m_standardNameSpace = GEV;
  else if (nameSpace == "IIDC") map.m_standardNameSpace = IIDC;
  else if (nameSpace == "CL") map.m_standardNameSpace = CL;
  else if (nameSpace == "USB") map.m_standardNameSpace = USB;
  else map.m_standardNameSpace = None;
  const char* const schema[3] = {"SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion"};
  const char* const device[3] = {"MajorVersion", "MinorVersion", "SubMinorVersion"};
  for (int i = 0; i < 3; ++i) {
    ParseInteger(root.Attribute(schema[i]), map.m_schemaVersion[i]);
    ParseInteger(root.Attribute(device[i]), map.m_deviceVersion[i]);
  }
}

}  // namespace

std::unique_ptr<CNodeMapImpl> LoadNodeMap(const char* text, size_t size, const std::string& deviceName) {
  CXmlDocument document;
  if (!document.Load(text, size)) {
    const GenICam::Platform::CXmlParseError& error = document.Error();
    throw RUNTIME_EXCEPTION("XML parse error at line %zu, column %zu: %s", error.line, error.column,
                            error.message.c_str());
  }
  const CXmlElement root = document.Root();
  if (root.Name() != "RegisterDescription") {
    const std::string rootName(root.Name().substr(0, 200));
    throw RUNTIME_EXCEPTION("Not a device description: the root element is <%s>, not <RegisterDescription>",
                            rootName.c_str());
  }
  auto map = std::make_unique<CNodeMapImpl>(deviceName);
  ReadRootAttributes(*map, root);
  CLoadContext context(*map);
  CLoader loader(*map, context);
  loader.CreateNodes(root, 0);
  loader.Configure();
  loader.Finish();
  for (auto& owned : map->AllNodes()) owned->RemoveDuplicateLinks();
  CheckCycles(*map);
  MarkFeatures(*map);
  GroupRegisters(*map);
  MarkAccessCacheable(*map);
  for (auto& owned : map->AllNodes()) {
    auto* port = dynamic_cast<CPortNode*>(owned.get());
    if (port != nullptr && port->IsChunkPort()) map->ChunkPorts().push_back(port);
    if (owned->GetPollingTime() > 0) map->PolledNodes().push_back(owned.get());
  }
  return map;
}

}  // namespace Engine
}  // namespace GenApi
