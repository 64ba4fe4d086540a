// Uses the GenICam engine on its own: loads a camera description and lists its top-level categories.
//   genicam_offline FILE.xml|FILE.zip
#include <GenApi/GenApi.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: genicam_offline FILE.xml|FILE.zip\n");
    return 2;
  }
  try {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, argv[1]);
    GenApi::CNodeMapRef map(factory.CreateNodeMap());
    std::printf("%s %s: %llu nodes\n", map._Ptr->GetVendorName().c_str(), map._Ptr->GetModelName().c_str(),
                static_cast<unsigned long long>(map._Ptr->GetNumNodes()));
    GenApi::FeatureList_t categories;
    if (GenApi::CCategoryPtr root{map._GetNode("Root")}) {
      root->GetFeatures(categories);
    }
    for (GenApi::IValue* category : categories) {
      std::printf("  %s\n", category->GetNode()->GetName().c_str());
    }
    return 0;
  } catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "genicam_offline: %s\n", error.GetDescription());
    return 1;
  }
}
