// Every real description file loads, and every node with a value can be queried without a crash.
#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <string>
#include <vector>

#include "MemoryPort.h"

namespace {

std::vector<std::string> CorpusFiles() {
  std::vector<std::string> files;
  const std::string folder = std::string(TALVIR_SHARED_DIR) + "/genicam-xml";
  DIR* directory = opendir(folder.c_str());
  if (directory == nullptr) return files;
  while (dirent* entry = readdir(directory)) {
    const std::string name = entry->d_name;
    if (name.size() > 4 && (name.substr(name.size() - 4) == ".xml" || name.substr(name.size() - 4) == ".zip")) {
      files.push_back(folder + "/" + name);
    }
  }
  closedir(directory);
  std::sort(files.begin(), files.end());
  return files;
}

// Queries everything an application or a dump would ask; GenICam exceptions are legitimate answers.
int QueryAll(GenApi::CNodeMapRef& map) {
  GenApi::NodeList_t nodes;
  map._GetNodes(nodes);
  int answered = 0;
  for (GenApi::INode* node : nodes) {
    try {
      (void)node->GetAccessMode();
      (void)node->GetPrincipalInterfaceType();
      GenApi::CIntegerPtr integer(node);
      GenApi::CFloatPtr floating(node);
      GenApi::CEnumerationPtr enumeration(node);
      GenApi::CBooleanPtr boolean(node);
      GenApi::CStringPtr text(node);
      GenApi::CCommandPtr command(node);
      GenApi::CRegisterPtr reg(node);
      if (integer) {
        (void)integer->GetMin();
        (void)integer->GetMax();
        (void)integer->GetInc();
        if (GenApi::IsReadable(integer)) (void)integer->GetValue();
      } else if (floating) {
        (void)floating->GetMin();
        (void)floating->GetMax();
        if (GenApi::IsReadable(floating)) (void)floating->GetValue();
      } else if (enumeration) {
        GenApi::StringList_t symbolics;
        enumeration->GetSymbolics(symbolics);
        if (GenApi::IsReadable(enumeration)) (void)enumeration->ToString();
      } else if (boolean) {
        if (GenApi::IsReadable(boolean)) (void)boolean->GetValue();
      } else if (text) {
        if (GenApi::IsReadable(text)) (void)text->GetValue();
      } else if (command) {
        (void)command->IsDone();
      } else if (reg) {
        (void)reg->GetLength();
      }
      ++answered;
    } catch (const GenICam::GenericException&) {
      ++answered;
    }
  }
  return answered;
}

TEST(Corpus, EveryFileLoadsAndEveryNodeAnswers) {
  const std::vector<std::string> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no description files in " << TALVIR_SHARED_DIR << "/genicam-xml";
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    GenApi::CNodeMapRef map;
    try {
      map._LoadXMLFromFile(file.c_str());
    } catch (const GenICam::GenericException& error) {
      ADD_FAILURE() << "load failed: " << error.GetDescription();
      continue;
    }
    EngineTest::CMemoryPort port(true, 1);
    GenApi::NodeList_t nodes;
    map._GetNodes(nodes);
    for (GenApi::INode* node : nodes) {
      if (node->GetPrincipalInterfaceType() == GenApi::intfIPort) map._Connect(&port, node->GetName());
    }
    EXPECT_GT(nodes.size(), 10u);
    EXPECT_EQ(QueryAll(map), static_cast<int>(nodes.size()));
  }
}

}  // namespace
