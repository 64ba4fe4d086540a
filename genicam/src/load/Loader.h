#pragma once
// Builds a node map from XML text: parse, create every node, configure it, resolve references, check the graph.
#include <cstddef>
#include <memory>
#include <string>

namespace GenApi {
namespace Engine {

class CNodeMapImpl;

// Throws a GenICam exception naming the line or the node on any error in the description.
std::unique_ptr<CNodeMapImpl> LoadNodeMap(const char* text, size_t size, const std::string& deviceName);

}  // namespace Engine
}  // namespace GenApi
