#pragma once
// A small description with the shapes saved settings must handle: dependent limits, a selector, nested selectors,
// a string, a read-only feature, a feature not marked Streamable and a command.
namespace PersistenceTest {

inline const char* kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="PersistenceModel" VendorName="TestVendor" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
    SubMinorVersion="0" ProductGuid="00000000-0000-0000-0000-000000000001"
    VersionGuid="00000000-0000-0000-0000-000000000002" xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root">
    <pFeature>Width</pFeature><pFeature>OffsetX</pFeature><pFeature>Gain</pFeature><pFeature>GainSelector</pFeature>
    <pFeature>LUTSelector</pFeature><pFeature>LUTIndex</pFeature><pFeature>LUTValue</pFeature>
    <pFeature>Label</pFeature><pFeature>Serial</pFeature><pFeature>Hidden</pFeature><pFeature>Reset</pFeature>
  </Category>
  <Integer Name="Width"><Streamable>Yes</Streamable><pValue>WidthReg</pValue><Min>1</Min><pMax>WidthMax</pMax></Integer>
  <IntReg Name="WidthReg"><Address>0x0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntSwissKnife Name="WidthMax"><pVariable Name="OX">OffsetXReg</pVariable><Formula>100 - OX</Formula></IntSwissKnife>
  <Integer Name="OffsetX"><Streamable>Yes</Streamable><pValue>OffsetXReg</pValue><Min>0</Min><pMax>OffsetXMax</pMax></Integer>
  <IntReg Name="OffsetXReg"><Address>0x4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntSwissKnife Name="OffsetXMax"><pVariable Name="W">WidthReg</pVariable><Formula>100 - W</Formula></IntSwissKnife>

  <Enumeration Name="GainSelector"><Streamable>Yes</Streamable>
    <EnumEntry Name="All"><Value>0</Value></EnumEntry><EnumEntry Name="Red"><Value>1</Value></EnumEntry>
    <EnumEntry Name="Blue"><Value>2</Value></EnumEntry>
    <pValue>GainSelectorReg</pValue><pSelected>Gain</pSelected></Enumeration>
  <IntReg Name="GainSelectorReg"><Address>0x8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="Gain"><Streamable>Yes</Streamable><pValue>GainReg</pValue><Min>0</Min><Max>1000</Max></Integer>
  <IntReg Name="GainReg"><Address>0x10</Address><pIndex Offset="4">GainSelectorReg</pIndex><Length>4</Length>
    <AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

  <Enumeration Name="LUTSelector"><Streamable>Yes</Streamable>
    <EnumEntry Name="Luminance"><Value>0</Value></EnumEntry><EnumEntry Name="Red"><Value>1</Value></EnumEntry>
    <pValue>LUTSelectorReg</pValue><pSelected>LUTIndex</pSelected><pSelected>LUTValue</pSelected></Enumeration>
  <IntReg Name="LUTSelectorReg"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="LUTIndex"><pValue>LUTIndexReg</pValue><Min>0</Min><Max>3</Max><pSelected>LUTValue</pSelected></Integer>
  <IntReg Name="LUTIndexReg"><Address>0x24</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="LUTValue"><Streamable>Yes</Streamable><pValue>LUTValueReg</pValue><Min>0</Min><Max>4095</Max></Integer>
  <IntReg Name="LUTValueReg"><pAddress>LUTValueAddress</pAddress><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntSwissKnife Name="LUTValueAddress"><pVariable Name="S">LUTSelectorReg</pVariable>
    <pVariable Name="I">LUTIndexReg</pVariable><Formula>256 + S * 16 + I * 4</Formula></IntSwissKnife>

  <StringReg Name="Label"><Streamable>Yes</Streamable><Address>0x200</Address><Length>16</Length>
    <AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
  <IntReg Name="Serial"><Streamable>Yes</Streamable><Address>0x300</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="Hidden"><Address>0x304</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Command Name="Reset"><Streamable>Yes</Streamable><pValue>ResetReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="ResetReg"><Address>0x308</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Port Name="Device"/>
</RegisterDescription>
)";

}  // namespace PersistenceTest
