#pragma once
// An opened producer module (system or interface) as the producer keeps it: its GenTL handle and, where the
// camera layer provides one, the feature port and node map over it.
#include <functional>
#include <memory>

namespace TALVIR {

class CCti;
class IXml;

class IGenTLModule {
public:
  virtual ~IGenTLModule() = default;
  virtual void* Handle() const = 0;
  // The module's features, or null when this record carries no port.
  virtual IXml* Xml() = 0;
};

// Makes the record for a module handle that `producer` has just opened.
using ModulePortFactory = std::function<std::unique_ptr<IGenTLModule>(CCti& producer, void* handle)>;

// A record that holds the handle only; used when no port factory is given.
class CBareModule final : public IGenTLModule {
public:
  explicit CBareModule(void* handle) : m_handle(handle) {}
  void* Handle() const override { return m_handle; }
  IXml* Xml() override { return nullptr; }

private:
  void* m_handle;
};

}  // namespace TALVIR
