#include "foundation/UUIDDefine.h"

// The library's only objects that are built when it is loaded: nothing else of it may be a static object that needs
// a constructor, so that these come first.

// Operational pattern, essence containers and data definitions.
const OxSharedPtr<MxfUUID> FBC_UL_OperationalPattern_1a(new MxfUUID(0x060E2B34, 0x04010101, 0x0D010201, 0x01010900));
const OxSharedPtr<MxfUUID> FBC_UL_MPEG2ES_FrameWrapping(new MxfUUID(0x060E2B34, 0x04010101, 0x0D010301, 0x02046001));
const OxSharedPtr<MxfUUID> FBC_UL_AES3_FrameWrapping(new MxfUUID(0x060E2B34, 0x04010101, 0x0D010301, 0x02060300));
const OxSharedPtr<MxfUUID> FBC_UL_AVC_FrameWrapping(new MxfUUID(0x060E2B34, 0x0401010A, 0x0D010301, 0x02106001));
const OxSharedPtr<MxfUUID> FBC_UL_HEVC_FrameWrapping(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150004, 0x02100001));
const OxSharedPtr<MxfUUID> FBC_UL_ANC_Packets(new MxfUUID(0x060E2B34, 0x04010109, 0x0D010301, 0x020E0000));
const OxSharedPtr<MxfUUID> FBC_UL_12MTimecodeTrack(new MxfUUID(0x060E2B34, 0x04010101, 0x01030201, 0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_PictureEssenceTrack(new MxfUUID(0x060E2B34, 0x04010101, 0x01030202, 0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_SoundEssenceTrack(new MxfUUID(0x060E2B34, 0x04010101, 0x01030202, 0x02000000));

// Properties of MPEG video descriptors, whose local tags are assigned per file.
const OxSharedPtr<MxfUUID> FBC_UL_MER_SingleSequence(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01020000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_ConstantBframes(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01030000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_CodedContentScanning(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01040000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_LowDelay(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01050000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_ClosedGOP(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01060000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_IdenticalGOPIndicator(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602,
                                                                        0x01070000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_MaxGOP(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01080000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_BPictureCount(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x01090000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_ProfileAndLevel(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x010A0000));
const OxSharedPtr<MxfUUID> FBC_UL_MER_BitRate(new MxfUUID(0x060E2B34, 0x01010105, 0x04010602, 0x010B0000));

// Capture gamma.
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_BT709(new MxfUUID(0x060E2B34, 0x04010101, 0x04010101,
                                                                             0x01020000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                                 0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Tessel(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                              0x03000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG2(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                                  0x02000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Tessel_FLAT(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                                   0x04000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Orvo_STD(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                                0x05000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_DCI(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                           0x06000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG3(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150001,
                                                                                  0x07000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_CameraLogC2(new MxfUUID(0x060E2B34, 0x0401010D, 0x04010101,
                                                                                   0x01110000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_CameraLogC3(new MxfUUID(0x060E2B34, 0x0401010D, 0x04110101,
                                                                                   0x01110000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_PQ(new MxfUUID(0x060E2B34, 0x0401010D, 0x04010101,
                                                                          0x010A0000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HLG(new MxfUUID(0x060E2B34, 0x0401010D, 0x04010101,
                                                                           0x010B0000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_NewGamma(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E170102,
                                                                                0x04010000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                      0x0E150001, 0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150001,
                                                                                   0x03000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG2(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                       0x0E150001, 0x02000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel_FLAT(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                        0x0E150001, 0x04000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Orvo_STD(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150001,
                                                                                     0x05000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_DCI(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150001,
                                                                                0x06000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG3(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                       0x0E150001, 0x07000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_PQ(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150001,
                                                                               0x08000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HLG(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150001,
                                                                                0x09000000));

// Colour primaries.
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT709(new MxfUUID(0x060E2B34, 0x04010106, 0x04010101,
                                                                               0x03030000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_Wren(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150002,
                                                                              0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_Kestrel(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150002,
                                                                                 0x02000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT2020(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150002,
                                                                                0x03000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_DCI_P3(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E150002,
                                                                                0x04000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_CameraGamut(new MxfUUID(0x060E2B34, 0x0401010D, 0x04010101,
                                                                                     0x030E0000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT2020_New(new MxfUUID(0x060E2B34, 0x0401010D, 0x04010101,
                                                                                    0x03040000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_NewGamut(new MxfUUID(0x060E2B34, 0x0401010D, 0x0E170102,
                                                                                  0x03010000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_Wren(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150002,
                                                                                   0x01000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_Kestrel(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                      0x0E150002, 0x02000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_BT2020(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150002,
                                                                                     0x03000000));
const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_DCI_P3(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150002,
                                                                                     0x04000000));

// Picture coding.
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150005,
                                                                                  0x00011000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_10(new MxfUUID(0x060E2B34, 0x0401010C, 0x0E150005,
                                                                                     0x00012000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                         0x0E150005, 0x00013000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                         0x0E150005, 0x00014000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_Intra(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                        0x0E150005, 0x00015000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_10_Intra(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                           0x0E150005, 0x00016000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10_Intra(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                               0x0E150005, 0x00017000));
const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12_Intra(new MxfUUID(0x060E2B34, 0x0401010C,
                                                                                               0x0E150005, 0x00018000));

// Essence container of the header partition; the key of camera metadata in the body.
const OxSharedPtr<MxfUUID> FBC_UL_HeaderPartition_EssenceContainer_MPEG_Video(new MxfUUID(0x060E2B34, 0x0401010A,
                                                                                          0x0D010301, 0x02106001));
const OxSharedPtr<MxfUUID> FBC_UL_BodyPartition_Private_Camera_Metadata(new MxfUUID(0x060E2B34, 0x0101010D, 0x0E150001,
                                                                                    0x00010000));
