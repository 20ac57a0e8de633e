#include <iterator>

#include "clipinfo/Text.h"
#include "foundation/UUIDDefine.h"

namespace {

struct LabelRow {
  const OxSharedPtr<MxfUUID>* label;
  const char* name;
};

// In the order of the catalogue.
constexpr LabelRow kLabels[] = {
    {&FBC_UL_OperationalPattern_1a, "OperationalPattern_1a"},
    {&FBC_UL_MPEG2ES_FrameWrapping, "MPEG2ES_FrameWrapping"},
    {&FBC_UL_AES3_FrameWrapping, "AES3_FrameWrapping"},
    {&FBC_UL_AVC_FrameWrapping, "AVC_FrameWrapping"},
    {&FBC_UL_HEVC_FrameWrapping, "HEVC_FrameWrapping"},
    {&FBC_UL_ANC_Packets, "ANC_Packets"},
    {&FBC_UL_12MTimecodeTrack, "12MTimecodeTrack"},
    {&FBC_UL_PictureEssenceTrack, "PictureEssenceTrack"},
    {&FBC_UL_SoundEssenceTrack, "SoundEssenceTrack"},
    {&FBC_UL_MER_SingleSequence, "MER_SingleSequence"},
    {&FBC_UL_MER_ConstantBframes, "MER_ConstantBframes"},
    {&FBC_UL_MER_CodedContentScanning, "MER_CodedContentScanning"},
    {&FBC_UL_MER_LowDelay, "MER_LowDelay"},
    {&FBC_UL_MER_ClosedGOP, "MER_ClosedGOP"},
    {&FBC_UL_MER_IdenticalGOPIndicator, "MER_IdenticalGOPIndicator"},
    {&FBC_UL_MER_MaxGOP, "MER_MaxGOP"},
    {&FBC_UL_MER_BPictureCount, "MER_BPictureCount"},
    {&FBC_UL_MER_ProfileAndLevel, "MER_ProfileAndLevel"},
    {&FBC_UL_MER_BitRate, "MER_BitRate"},
    {&FBC_UL_STMeatadata_CaptureGamma_BT709, "STMeatadata_CaptureGamma_BT709"},
    {&FBC_UL_STMeatadata_CaptureGamma_HaldenLOG, "STMeatadata_CaptureGamma_HaldenLOG"},
    {&FBC_UL_STMeatadata_CaptureGamma_Tessel, "STMeatadata_CaptureGamma_Tessel"},
    {&FBC_UL_STMeatadata_CaptureGamma_HaldenLOG2, "STMeatadata_CaptureGamma_HaldenLOG2"},
    {&FBC_UL_STMeatadata_CaptureGamma_Tessel_FLAT, "STMeatadata_CaptureGamma_Tessel_FLAT"},
    {&FBC_UL_STMeatadata_CaptureGamma_Orvo_STD, "STMeatadata_CaptureGamma_Orvo_STD"},
    {&FBC_UL_STMeatadata_CaptureGamma_DCI, "STMeatadata_CaptureGamma_DCI"},
    {&FBC_UL_STMeatadata_CaptureGamma_HaldenLOG3, "STMeatadata_CaptureGamma_HaldenLOG3"},
    {&FBC_UL_STMeatadata_CaptureGamma_CameraLogC2, "STMeatadata_CaptureGamma_CameraLogC2"},
    {&FBC_UL_STMeatadata_CaptureGamma_CameraLogC3, "STMeatadata_CaptureGamma_CameraLogC3"},
    {&FBC_UL_STMeatadata_CaptureGamma_PQ, "STMeatadata_CaptureGamma_PQ"},
    {&FBC_UL_STMeatadata_CaptureGamma_HLG, "STMeatadata_CaptureGamma_HLG"},
    {&FBC_UL_STMeatadata_CaptureGamma_NewGamma, "STMeatadata_CaptureGamma_NewGamma"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG, "STMeatadata_CaptureGamma_HEVC_HaldenLOG"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel, "STMeatadata_CaptureGamma_HEVC_Tessel"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG2, "STMeatadata_CaptureGamma_HEVC_HaldenLOG2"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel_FLAT, "STMeatadata_CaptureGamma_HEVC_Tessel_FLAT"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_Orvo_STD, "STMeatadata_CaptureGamma_HEVC_Orvo_STD"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_DCI, "STMeatadata_CaptureGamma_HEVC_DCI"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG3, "STMeatadata_CaptureGamma_HEVC_HaldenLOG3"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_PQ, "STMeatadata_CaptureGamma_HEVC_PQ"},
    {&FBC_UL_STMeatadata_CaptureGamma_HEVC_HLG, "STMeatadata_CaptureGamma_HEVC_HLG"},
    {&FBC_UL_STMeatadata_ColorPrimaries_BT709, "STMeatadata_ColorPrimaries_BT709"},
    {&FBC_UL_STMeatadata_ColorPrimaries_Wren, "STMeatadata_ColorPrimaries_Wren"},
    {&FBC_UL_STMeatadata_ColorPrimaries_Kestrel, "STMeatadata_ColorPrimaries_Kestrel"},
    {&FBC_UL_STMeatadata_ColorPrimaries_BT2020, "STMeatadata_ColorPrimaries_BT2020"},
    {&FBC_UL_STMeatadata_ColorPrimaries_DCI_P3, "STMeatadata_ColorPrimaries_DCI_P3"},
    {&FBC_UL_STMeatadata_ColorPrimaries_CameraGamut, "STMeatadata_ColorPrimaries_CameraGamut"},
    {&FBC_UL_STMeatadata_ColorPrimaries_BT2020_New, "STMeatadata_ColorPrimaries_BT2020_New"},
    {&FBC_UL_STMeatadata_ColorPrimaries_NewGamut, "STMeatadata_ColorPrimaries_NewGamut"},
    {&FBC_UL_STMeatadata_ColorPrimaries_HEVC_Wren, "STMeatadata_ColorPrimaries_HEVC_Wren"},
    {&FBC_UL_STMeatadata_ColorPrimaries_HEVC_Kestrel, "STMeatadata_ColorPrimaries_HEVC_Kestrel"},
    {&FBC_UL_STMeatadata_ColorPrimaries_HEVC_BT2020, "STMeatadata_ColorPrimaries_HEVC_BT2020"},
    {&FBC_UL_STMeatadata_ColorPrimaries_HEVC_DCI_P3, "STMeatadata_ColorPrimaries_HEVC_DCI_P3"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main, "STMetadata_PictureEssence_HEVC_Main"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_10, "STMetadata_PictureEssence_HEVC_Main_10"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10, "STMetadata_PictureEssence_HEVC_Main_422_10"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12, "STMetadata_PictureEssence_HEVC_Main_422_12"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_Intra, "STMetadata_PictureEssence_HEVC_Main_Intra"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_10_Intra, "STMetadata_PictureEssence_HEVC_Main_10_Intra"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10_Intra, "STMetadata_PictureEssence_HEVC_Main_422_10_Intra"},
    {&FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12_Intra, "STMetadata_PictureEssence_HEVC_Main_422_12_Intra"},
    {&FBC_UL_HeaderPartition_EssenceContainer_MPEG_Video, "HeaderPartition_EssenceContainer_MPEG_Video"},
    {&FBC_UL_BodyPartition_Private_Camera_Metadata, "BodyPartition_Private_Camera_Metadata"},
};

// Labels of the public register (SMPTE ST 400) that clips of other writers carry, by their bytes 8 to 15. Byte 7,
// the version of the register that first held the label, tells nothing about its meaning.
struct RegisterRow {
  unsigned char bytes[8];
  const char* name;
};
constexpr RegisterRow kRegister[] = {
    {{0x01, 0x03, 0x02, 0x02, 0x03, 0x00, 0x00, 0x00}, "DataEssenceTrack"},
    {{0x01, 0x03, 0x02, 0x01, 0x10, 0x00, 0x00, 0x00}, "DescriptiveMetadataTrack"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x01, 0x10, 0x00}, "MPEG2_MP_ML_IFrame"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x01, 0x11, 0x00}, "MPEG2_MP_ML_LongGOP"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x02, 0x02, 0x00}, "MPEG2_422P_ML_IFrame"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x02, 0x03, 0x00}, "MPEG2_422P_ML_LongGOP"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x03, 0x02, 0x00}, "MPEG2_MP_HL_IFrame"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x03, 0x03, 0x00}, "MPEG2_MP_HL_LongGOP"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x04, 0x02, 0x00}, "MPEG2_422P_HL_IFrame"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x04, 0x03, 0x00}, "MPEG2_422P_HL_LongGOP"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x05, 0x02, 0x00}, "MPEG2_MP_H14_IFrame"},
    {{0x04, 0x01, 0x02, 0x02, 0x01, 0x05, 0x03, 0x00}, "MPEG2_MP_H14_LongGOP"},
    {{0x04, 0x01, 0x01, 0x01, 0x01, 0x01, 0x00, 0x00}, "Transfer_BT470"},
    {{0x04, 0x01, 0x01, 0x01, 0x01, 0x02, 0x00, 0x00}, "Transfer_BT709"},
    {{0x04, 0x01, 0x01, 0x01, 0x03, 0x01, 0x00, 0x00}, "ColorPrimaries_ST170"},
    {{0x04, 0x01, 0x01, 0x01, 0x03, 0x02, 0x00, 0x00}, "ColorPrimaries_BT470"},
    {{0x04, 0x01, 0x01, 0x01, 0x03, 0x03, 0x00, 0x00}, "ColorPrimaries_BT709"},
    {{0x0D, 0x01, 0x03, 0x01, 0x02, 0x04, 0x60, 0x01}, "MPEG2ES_FrameWrapping"},
    {{0x0D, 0x01, 0x03, 0x01, 0x02, 0x06, 0x01, 0x00}, "BWF_FrameWrapping"},
    {{0x0D, 0x01, 0x03, 0x01, 0x02, 0x06, 0x03, 0x00}, "AES3_FrameWrapping"},
    {{0x0D, 0x01, 0x03, 0x01, 0x02, 0x0E, 0x00, 0x00}, "ANC_Packets"},
    {{0x0D, 0x01, 0x03, 0x01, 0x02, 0x7F, 0x01, 0x00}, "MultipleWrappings"},
};

bool isOfRegister(const MxfUUID& label) {
  constexpr unsigned char kLead[] = {0x06, 0x0E, 0x2B, 0x34, 0x04, 0x01, 0x01};
  for (unsigned int i = 0; i < std::size(kLead); ++i) {
    if (label.ValueAtIndex(i) != kLead[i]) return false;
  }
  return true;
}

bool isRow(const RegisterRow& row, const MxfUUID& label) {
  for (unsigned int i = 0; i < std::size(row.bytes); ++i) {
    if (label.ValueAtIndex(i + 8) != row.bytes[i]) return false;
  }
  return true;
}

}  // namespace

const char* LabelName(const MxfUUID& label) {
  for (const LabelRow& row : kLabels) {
    if (**row.label == label) return row.name;
  }
  if (!isOfRegister(label)) return nullptr;
  for (const RegisterRow& row : kRegister) {
    if (isRow(row, label)) return row.name;
  }
  return nullptr;
}
