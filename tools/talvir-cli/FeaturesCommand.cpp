#include "FeaturesCommand.h"

#include "CameraSession.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>

namespace TalvirCli {
namespace {

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string RangeText(const SFeatureDescription& feature) {
  if (!feature.entries.empty()) {
    std::string text = "{";
    for (const std::string& entry : feature.entries) {
      text += (text.size() > 1 ? ", " : "") + entry;
    }
    return text + "}";
  }
  if (feature.min.empty()) {
    return std::string();
  }
  std::string text = "[" + feature.min + " .. " + feature.max;
  if (!feature.inc.empty() && feature.inc != "1") {
    text += " step " + feature.inc;
  }
  return text + "]";
}

}  // namespace

CLI::App* CFeaturesCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "features", "Show the feature tree of a camera module: type, access, value, range and unit of each feature");
  m_camera.AddTo(*command, true);
  command->add_option("--filter,-f", m_filter, "Only features whose name contains TEXT (any case)");
  command->add_flag("--json", m_json, "Print the features as JSON");
  return command;
}

bool CFeaturesCommand::Matches(const std::string& name) const {
  return m_filter.empty() || Lower(name).find(Lower(m_filter)) != std::string::npos;
}

bool CFeaturesCommand::Collect(GenApi::INode* category, int depth, std::vector<SRow>& rows,
                               std::vector<GenApi::INode*>& path) const {
  GenApi::FeatureList_t features;
  GenApi::CCategoryPtr(category)->GetFeatures(features);
  bool any = false;
  for (GenApi::IValue* value : features) {
    GenApi::INode* node = value;
    if (std::find(path.begin(), path.end(), node) != path.end()) {
      continue;  // a category that contains itself: shown once
    }
    if (node->GetPrincipalInterfaceType() == GenApi::intfICategory) {
      const size_t mark = rows.size();
      rows.push_back({depth, Describe(node)});
      path.push_back(node);
      const bool inside = Collect(node, depth + 1, rows, path);
      path.pop_back();
      if (!inside && !Matches(node->GetName())) {
        rows.resize(mark);
      }
      any = any || inside || Matches(node->GetName());
    } else if (Matches(node->GetName())) {
      rows.push_back({depth, Describe(node)});
      any = true;
    }
  }
  return any;
}

int CFeaturesCommand::Run(const SCommandContext& context) {
  CCameraSession session;
  session.Open(m_camera);
  GenApi::INodeMap& map = session.NodeMap(m_camera.module);
  std::vector<SRow> rows;
  if (GenApi::INode* root = map.GetNode("Root")) {
    std::vector<GenApi::INode*> path{root};
    Collect(root, 0, rows, path);
  } else {
    // A description without a Root category: every node that has a value, by name.
    GenApi::NodeList_t nodes;
    map.GetNodes(nodes);
    std::sort(nodes.begin(), nodes.end(),
              [](GenApi::INode* a, GenApi::INode* b) { return a->GetName() < b->GetName(); });
    for (GenApi::INode* node : nodes) {
      if (Matches(node->GetName()) && GenApi::CValuePtr(node).IsValid()) {
        rows.push_back({0, Describe(node)});
      }
    }
  }
  if (m_json) {
    PrintJson(context.out, rows);
  } else {
    PrintText(context.out, rows);
  }
  return 0;
}

void CFeaturesCommand::PrintText(std::ostream& out, const std::vector<SRow>& rows) {
  constexpr size_t kColumns = 6;
  std::vector<std::array<std::string, kColumns>> lines;
  lines.push_back({"FEATURE", "TYPE", "ACCESS", "VALUE", "RANGE", "UNIT"});
  for (const SRow& row : rows) {
    const SFeatureDescription& feature = row.feature;
    const bool category = feature.type == "Category";
    std::string value = feature.error.empty() ? feature.value : "(" + feature.error + ")";
    if (value.size() > 40) {
      value = value.substr(0, 37) + "...";
    }
    lines.push_back({std::string(2 * static_cast<size_t>(row.depth), ' ') + feature.name, category ? "" : feature.type,
                     category ? "" : feature.access, value, RangeText(feature), feature.unit});
  }
  std::array<size_t, kColumns> widths{};
  for (const auto& line : lines) {
    for (size_t column = 0; column < kColumns; ++column) {
      widths[column] = std::max(widths[column], line[column].size());
    }
  }
  for (const auto& line : lines) {
    std::string text;
    for (size_t column = 0; column < kColumns; ++column) {
      text += line[column];
      if (column + 1 < kColumns) {
        text += std::string(widths[column] - line[column].size() + 2, ' ');
      }
    }
    while (!text.empty() && text.back() == ' ') {
      text.pop_back();
    }
    out << text << '\n';
  }
}

void CFeaturesCommand::PrintJson(std::ostream& out, const std::vector<SRow>& rows) {
  // Nested like the tree: each category carries its features.
  // Rows are in depth-first order: each level takes the rows of its depth and the levels below them.
  size_t index = 0;
  std::function<nlohmann::ordered_json(int)> level = [&](int depth) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    while (index < rows.size() && rows[index].depth == depth) {
      const SRow& row = rows[index++];
      nlohmann::ordered_json item = ToJson(row.feature);
      if (row.feature.type == "Category") {
        item["features"] = level(depth + 1);
      }
      list.push_back(std::move(item));
    }
    return list;
  };
  out << nlohmann::ordered_json{{"features", level(0)}}.dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
      << '\n';
}

}  // namespace TalvirCli
