#pragma once
// A small description that evaluates one formula text in every formula-carrying node type: an IntSwissKnife (64-bit
// integers), a SwissKnife (doubles), and the FormulaTo/FormulaFrom of an IntConverter and a Converter, with variables
// bound to an Integer, a Float and an Enumeration, a Constant and an Expression.
#include <string>

namespace TALVIR::Fuzz {
// CDATA cannot hold "]]>"; split it across two sections.
inline std::string AsCData(const std::string& text) {
  std::string out = "<![CDATA[";
  for (size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 3, "]]>") == 0) {
      out += "]]]]><![CDATA[>";
      i += 2;
      continue;
    }
    out += text[i];
  }
  return out + "]]>";
}

inline std::string FormulaDescription(const std::string& formula) {
  const std::string f = AsCData(formula);
  const std::string variables = R"(<pVariable Name="A">IntA</pVariable><pVariable Name="B">FloatB</pVariable>
      <pVariable Name="E">Mode</pVariable><Constant Name="C">3</Constant><Expression Name="X">A+1</Expression>)";
  return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Fuzz" VendorName="Talvir" StandardNameSpace="None" SchemaMajorVersion="1"
    SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="00000000-0000-0000-0000-000000000000" VersionGuid="00000000-0000-0000-0000-000000000001">
  <Integer Name="IntA"><Value>-7</Value><Min>-100</Min><Max>100</Max><Inc>1</Inc></Integer>
  <Float Name="FloatB"><Value>2.5</Value><Min>-10</Min><Max>10</Max></Float>
  <Enumeration Name="Mode"><EnumEntry Name="Mode_On"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>
  <IntSwissKnife Name="IntFormula">)" +
         variables + "<Formula>" + f + R"(</Formula></IntSwissKnife>
  <SwissKnife Name="FloatFormula">)" +
         variables + "<Formula>" + f + R"(</Formula></SwissKnife>
  <Integer Name="Target"><Value>5</Value></Integer>
  <IntConverter Name="IntConv">)" +
         variables + "<FormulaTo>" + f + "</FormulaTo><FormulaFrom>" + f +
         R"(</FormulaFrom><pValue>Target</pValue></IntConverter>
  <Converter Name="FloatConv">)" +
         variables + "<FormulaTo>" + f + "</FormulaTo><FormulaFrom>" + f +
         R"(</FormulaFrom><pValue>Target</pValue></Converter>
</RegisterDescription>
)";
}
}  // namespace TALVIR::Fuzz
