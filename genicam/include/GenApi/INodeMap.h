#pragma once
// A loaded device description: a set of named nodes that read and write registers through connected ports.
#include <GenApi/Interfaces.h>
#include <GenApi/Lock.h>

namespace GenApi {

struct GENICAM_API INodeMap {
  virtual void GetNodes(NodeList_t& Nodes) const = 0;
  // The node of that name, or null.
  virtual INode* GetNode(const gcstring& Name) const = 0;
  // Drops every cached value; callbacks of every node with a value fire.
  virtual void InvalidateNodes() const = 0;
  // Connects a user port to the Port node of that name; false when there is no such Port node.
  virtual bool Connect(IPort* pPort, const gcstring& PortName) const = 0;
  // Connects a user port to the Port node named "Device".
  virtual bool Connect(IPort* pPort) const = 0;
  virtual gcstring GetDeviceName() = 0;
  // Advances every polled node's clock by ElapsedTime milliseconds; those whose polling time has passed are invalidated.
  virtual void Poll(int64_t ElapsedTime) = 0;
  virtual CLock& GetLock() const = 0;
  virtual uint64_t GetNumNodes() const = 0;
  // True when the text is a well-formed integer formula (variables are not resolved).
  virtual bool ParseSwissKnife(const gcstring& Expression) const = 0;

  // Description of the loaded file (root element attributes).
  virtual gcstring GetModelName() const = 0;
  virtual gcstring GetVendorName() const = 0;
  virtual EStandardNameSpace GetStandardNameSpace() const = 0;
  virtual void GetSchemaVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const = 0;
  virtual void GetDeviceVersion(int64_t& Major, int64_t& Minor, int64_t& SubMinor) const = 0;

protected:
  virtual ~INodeMap() = default;
};

}  // namespace GenApi
