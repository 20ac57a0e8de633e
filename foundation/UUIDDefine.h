#ifndef CLIPPARSER_FOUNDATION_UUIDDEFINE_H
#define CLIPPARSER_FOUNDATION_UUIDDEFINE_H

#include "foundation/Export.h"
#include "foundation/MxfUUID.h"
#include "foundation/OxSharedPtr.h"

// The catalogue of labels that clips are written with, for comparison with what a clip's metadata holds. The constants
// exist before any other code of the library or of a program that links it runs, static initialisers included; they
// are never changed and may be read from any thread. A few names are misspelled ("STMeatadata"): that is their name.
// The labels of HEVC recordings differ from their counterparts in byte 7. FBC_UL_AVC_FrameWrapping and
// FBC_UL_HeaderPartition_EssenceContainer_MPEG_Video are two names of one label.

// Operational pattern, essence containers and data definitions.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_OperationalPattern_1a;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MPEG2ES_FrameWrapping;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_AES3_FrameWrapping;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_AVC_FrameWrapping;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_HEVC_FrameWrapping;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_ANC_Packets;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_12MTimecodeTrack;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_PictureEssenceTrack;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_SoundEssenceTrack;

// Properties of MPEG video descriptors, whose local tags are assigned per file.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_SingleSequence;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_ConstantBframes;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_CodedContentScanning;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_LowDelay;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_ClosedGOP;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_IdenticalGOPIndicator;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_MaxGOP;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_BPictureCount;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_ProfileAndLevel;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_MER_BitRate;

// Capture gamma.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_BT709;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Tessel;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG2;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Tessel_FLAT;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_Orvo_STD;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_DCI;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HaldenLOG3;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_CameraLogC2;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_CameraLogC3;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_PQ;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HLG;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_NewGamma;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG2;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Tessel_FLAT;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_Orvo_STD;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_DCI;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HaldenLOG3;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_PQ;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_CaptureGamma_HEVC_HLG;

// Colour primaries.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT709;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_Wren;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_Kestrel;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT2020;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_DCI_P3;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_CameraGamut;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_BT2020_New;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_NewGamut;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_Wren;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_Kestrel;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_BT2020;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMeatadata_ColorPrimaries_HEVC_DCI_P3;

// Picture coding.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_10;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_Intra;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_10_Intra;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_10_Intra;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_STMetadata_PictureEssence_HEVC_Main_422_12_Intra;

// Essence container of the header partition; the key of camera metadata in the body.
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_HeaderPartition_EssenceContainer_MPEG_Video;
extern CLIPPARSER_EXPORT const OxSharedPtr<MxfUUID> FBC_UL_BodyPartition_Private_Camera_Metadata;

#endif  // CLIPPARSER_FOUNDATION_UUIDDEFINE_H
