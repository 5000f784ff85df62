/**
 * @file names_video.cpp
 * Names of the video framer and of the hardware video decoder.
 */
#include "hostsvc.h"
#include "names.h"

using namespace hostsvc;

char* SessMgr_GetVFramerStateString(int enState, char* szBuffer, size_t nSize)
{
    static constexpr Name STATES[] = {
        {SMGR_VFRAMER_STATE_UNKNOWN,     "Unknown"    },
        {SMGR_VFRAMER_STATE_IDLE,        "Idle"       },
        {SMGR_VFRAMER_STATE_ACTIVE,      "Active"     },
        {SMGR_VFRAMER_STATE_INVALID,     "Invalid"    },
        {SMGR_VFRAMER_STATE_UNSUPPORTED, "Unsupported"},
    };
    return NameText(STATES, enState, szBuffer, nSize);
}

char* SessMgr_GetVideoColorTypeString(int enType, char* szBuffer, size_t nSize)
{
    static constexpr Name TYPES[] = {
        {SMGR_VIDEO_COLOR_TYPE_UNKNOWN,    "Unknown"     },
        {SMGR_VIDEO_COLOR_TYPE_420_8BIT,   "4:2:0 8-bit" },
        {SMGR_VIDEO_COLOR_TYPE_420_10BIT,  "4:2:0 10-bit"},
        {SMGR_VIDEO_COLOR_TYPE_422_8BIT,   "4:2:2 8-bit" },
        {SMGR_VIDEO_COLOR_TYPE_422_10BIT,  "4:2:2 10-bit"},
        {SMGR_VIDEO_COLOR_TYPE_MONOCHROME, "Monochrome"  },
        {SMGR_VIDEO_COLOR_TYPE_444,        "4:4:4"       },
    };
    return NameText(TYPES, enType, szBuffer, nSize);
}

/* ---- Profiles and levels ---- */

namespace
{

/** ITU-T H.264, profile_idc: clause A.2 and the profiles of the annexes for scalable, multiview and depth coding. */
constexpr Name H264_PROFILES[] = {
    {44,  "CAVLC 4:4:4 Intra"            },
    {66,  "Baseline"                     },
    {77,  "Main"                         },
    {83,  "Scalable Baseline"            },
    {86,  "Scalable High"                },
    {88,  "Extended"                     },
    {100, "High"                         },
    {110, "High 10"                      },
    {118, "Multiview High"               },
    {122, "High 4:2:2"                   },
    {128, "Stereo High"                  },
    {134, "MFC High"                     },
    {135, "MFC Depth High"               },
    {138, "Multiview Depth High"         },
    {139, "Enhanced Multiview Depth High"},
    {244, "High 4:4:4 Predictive"        },
};

/** ITU-T H.264, table A-1: level_idc is ten times the level. 9 is level 1b of the High profiles. */
constexpr Name H264_LEVELS[] = {
    {9,  "1b" },
    {10, "1"  },
    {11, "1.1"},
    {12, "1.2"},
    {13, "1.3"},
    {20, "2"  },
    {21, "2.1"},
    {22, "2.2"},
    {30, "3"  },
    {31, "3.1"},
    {32, "3.2"},
    {40, "4"  },
    {41, "4.1"},
    {42, "4.2"},
    {50, "5"  },
    {51, "5.1"},
    {52, "5.2"},
    {60, "6"  },
    {61, "6.1"},
    {62, "6.2"},
};

/** ITU-T H.265, general_profile_idc: clause A.3 and the profiles of the annexes for multiview, scalable and 3D coding. */
constexpr Name H265_PROFILES[] = {
    {1,  "Main"                                            },
    {2,  "Main 10"                                         },
    {3,  "Main Still Picture"                              },
    {4,  "Format Range Extensions"                         },
    {5,  "High Throughput"                                 },
    {6,  "Multiview Main"                                  },
    {7,  "Scalable Main"                                   },
    {8,  "3D Main"                                         },
    {9,  "Screen Content Coding Extensions"                },
    {10, "Scalable Format Range Extensions"                },
    {11, "High Throughput Screen Content Coding Extensions"},
};

/** ITU-T H.265, clause A.4: general_level_idc is thirty times the level. */
constexpr Name H265_LEVELS[] = {
    {30,  "1"  },
    {60,  "2"  },
    {63,  "2.1"},
    {90,  "3"  },
    {93,  "3.1"},
    {120, "4"  },
    {123, "4.1"},
    {150, "5"  },
    {153, "5.1"},
    {156, "5.2"},
    {180, "6"  },
    {183, "6.1"},
    {186, "6.2"},
    {255, "8.5"},
};

/** ISO/IEC 13818-2, table 8-2. The 4:2:2 profile is in the escape range: 8 with the escape bit kept, 0 without it. */
constexpr Name MPEG2_PROFILES[] = {
    {0, "4:2:2"             },
    {1, "High"              },
    {2, "Spatially Scalable"},
    {3, "SNR Scalable"      },
    {4, "Main"              },
    {5, "Simple"            },
    {8, "4:2:2"             },
};

/** ISO/IEC 13818-2, table 8-3. Levels 2 and 5 are those of the 4:2:2 profile, in the escape range. */
constexpr Name MPEG2_LEVELS[] = {
    {2,  "High"     },
    {4,  "High"     },
    {5,  "Main"     },
    {6,  "High 1440"},
    {8,  "Main"     },
    {10, "Low"      },
};

/** ISO/IEC 14496-2, table G.1, upper half. */
constexpr Name MPEG4_PROFILES[] = {
    {0,  "Simple"                    },
    {1,  "Simple Scalable"           },
    {2,  "Core"                      },
    {3,  "Main"                      },
    {4,  "N-bit"                     },
    {5,  "Scalable Texture"          },
    {6,  "Simple Face Animation"     },
    {7,  "Basic Animated Texture"    },
    {8,  "Hybrid"                    },
    {9,  "Advanced Real Time Simple" },
    {10, "Core Scalable"             },
    {11, "Advanced Coding Efficiency"},
    {12, "Advanced Core"             },
    {13, "Advanced Scalable Texture" },
    {14, "Simple Studio"             },
    {15, "Advanced Simple"           },
};

/** ISO/IEC 14496-2, table G.1, lower half: 7 of the Advanced Simple profile, 8 and 9 of the Simple profile. */
constexpr Name MPEG4_LEVELS[] = {
    {0, "0" },
    {1, "1" },
    {2, "2" },
    {3, "3" },
    {4, "4" },
    {5, "5" },
    {6, "6" },
    {7, "3b"},
    {8, "0" },
    {9, "0b"},
};

} // namespace

char* SessMgr_GetVideoProfileString(int nProfile, int enCompression, char* szBuffer, size_t nSize)
{
    switch (enCompression)
    {
    case SMGR_TDEMUX_COMPRESSION_TYPE_H264: return NameText(H264_PROFILES, nProfile, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_H265: return NameText(H265_PROFILES, nProfile, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2: return NameText(MPEG2_PROFILES, nProfile, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4: return NameText(MPEG4_PROFILES, nProfile, szBuffer, nSize);
    default: return UnknownText(nProfile, szBuffer, nSize);
    }
}

char* SessMgr_GetVideoLevelString(int nLevel, int enCompression, char* szBuffer, size_t nSize)
{
    switch (enCompression)
    {
    case SMGR_TDEMUX_COMPRESSION_TYPE_H264: return NameText(H264_LEVELS, nLevel, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_H265: return NameText(H265_LEVELS, nLevel, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2: return NameText(MPEG2_LEVELS, nLevel, szBuffer, nSize);
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4: return NameText(MPEG4_LEVELS, nLevel, szBuffer, nSize);
    default: return UnknownText(nLevel, szBuffer, nSize);
    }
}

/* ---- Dynamic range and colour ---- */

char* SessMgr_GetVideoHDRTypeString(int enType, char* szBuffer, size_t nSize)
{
    static constexpr Name TYPES[] = {
        {SMGR_VFRAMER_HDR_TYPE_INVALID,     "Invalid"    },
        {SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED, "Unspecified"},
        {SMGR_VFRAMER_HDR_TYPE_SDR,         "SDR"        },
        {SMGR_VFRAMER_HDR_TYPE_HLG,         "HLG"        },
        {SMGR_VFRAMER_HDR_TYPE_PQ,          "PQ"         },
        {SMGR_VFRAMER_HDR_TYPE_CUSTOM,      "Custom"     },
    };
    return NameText(TYPES, enType, szBuffer, nSize);
}

namespace
{

/** ITU-T H.273, table 2: ColourPrimaries. */
constexpr Name COLOUR_PRIMARIES[] = {
    {1,  "BT.709"                     },
    {2,  "Unspecified"                },
    {4,  "BT.470 System M"            },
    {5,  "BT.470 System B/G"          },
    {6,  "SMPTE ST 170 (BT.601 525)"  },
    {7,  "SMPTE ST 240"               },
    {8,  "Generic film"               },
    {9,  "BT.2020"                    },
    {10, "SMPTE ST 428-1 (XYZ)"       },
    {11, "SMPTE RP 431-2 (DCI-P3)"    },
    {12, "SMPTE EG 432-1 (Display P3)"},
    {22, "EBU Tech 3213-E"            },
};

/** ITU-T H.273, table 3: TransferCharacteristics. */
constexpr Name TRANSFER_CHARACTERISTICS[] = {
    {1,  "BT.709"                       },
    {2,  "Unspecified"                  },
    {4,  "Gamma 2.2 (BT.470 System M)"  },
    {5,  "Gamma 2.8 (BT.470 System B/G)"},
    {6,  "SMPTE ST 170 (BT.601)"        },
    {7,  "SMPTE ST 240"                 },
    {8,  "Linear"                       },
    {9,  "Logarithmic 100:1"            },
    {10, "Logarithmic 316.23:1"         },
    {11, "IEC 61966-2-4 (xvYCC)"        },
    {12, "BT.1361"                      },
    {13, "IEC 61966-2-1 (sRGB)"         },
    {14, "BT.2020 10-bit"               },
    {15, "BT.2020 12-bit"               },
    {16, "SMPTE ST 2084 (PQ)"           },
    {17, "SMPTE ST 428-1"               },
    {18, "ARIB STD-B67 (HLG)"           },
};

/** ITU-T H.273, table 4: MatrixCoefficients. */
constexpr Name MATRIX_COEFFICIENTS[] = {
    {0,  "Identity (GBR)"                             },
    {1,  "BT.709"                                     },
    {2,  "Unspecified"                                },
    {4,  "FCC"                                        },
    {5,  "BT.470 System B/G"                          },
    {6,  "SMPTE ST 170 (BT.601)"                      },
    {7,  "SMPTE ST 240"                               },
    {8,  "YCgCo"                                      },
    {9,  "BT.2020 non-constant luminance"             },
    {10, "BT.2020 constant luminance"                 },
    {11, "SMPTE ST 2085"                              },
    {12, "Chromaticity-derived non-constant luminance"},
    {13, "Chromaticity-derived constant luminance"    },
    {14, "ICtCp"                                      },
    {15, "IPT-PQ-C2"                                  },
    {16, "YCgCo-Re"                                   },
    {17, "YCgCo-Ro"                                   },
};

/** A code point has 8 bits, and those that the standard does not assign are reserved. */
template <size_t nNames> char* CodePointText(const Name (&names)[nNames], unsigned int nCodePoint, char* szBuffer, size_t nSize)
{
    if (nCodePoint > 255) return UnknownText(nCodePoint, szBuffer, nSize);
    const std::string_view text = FindName(names, static_cast<int>(nCodePoint));
    return CopyText(text.empty() ? "Reserved" : text, szBuffer, nSize);
}

} // namespace

char* SessMgr_GetVideoColourPrimariesString(unsigned int nCodePoint, char* szBuffer, size_t nSize)
{
    return CodePointText(COLOUR_PRIMARIES, nCodePoint, szBuffer, nSize);
}

char* SessMgr_GetVideoTransferCharacteristicsString(unsigned int nCodePoint, char* szBuffer, size_t nSize)
{
    return CodePointText(TRANSFER_CHARACTERISTICS, nCodePoint, szBuffer, nSize);
}

char* SessMgr_GetVideoMatrixCoefficientsString(unsigned int nCodePoint, char* szBuffer, size_t nSize)
{
    return CodePointText(MATRIX_COEFFICIENTS, nCodePoint, szBuffer, nSize);
}

/* ---- Hardware video decoder ---- */

char* SessMgr_GetVCUDecoderStateString(int enState, char* szBuffer, size_t nSize)
{
    static constexpr Name STATES[] = {
        {SMGR_VCUDEC_STATE_UNKNOWN,                 "Unknown"                },
        {SMGR_VCUDEC_STATE_IDLE,                    "Idle"                   },
        {SMGR_VCUDEC_STATE_ACTIVE,                  "Active"                 },
        {SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY, "Idle (VCU lacks memory)"},
        {SMGR_VCUDEC_STATE_STOP,                    "Stopped"                },
        {SMGR_VCUDEC_STATE_INVALID,                 "Invalid"                },
    };
    return NameText(STATES, enState, szBuffer, nSize);
}

char* SessMgr_GetVCUDecoderPicStructureString(int enPicStructure, char* szBuffer, size_t nSize)
{
    static constexpr Name STRUCTURES[] = {
        {VCUDEC_PICSTRUCTURE_UNKNOWN,               "Unknown"                             },
        {VCUDEC_PICSTRUCTURE_FRAME,                 "Frame"                               },
        {VCUDEC_PICSTRUCTURE_TOP_FIELD,             "Top field"                           },
        {VCUDEC_PICSTRUCTURE_BOTTOM_FIELD,          "Bottom field"                        },
        {VCUDEC_PICSTRUCTURE_TOP_BOT,               "Top, bottom field"                   },
        {VCUDEC_PICSTRUCTURE_BOT_TOP,               "Bottom, top field"                   },
        {VCUDEC_PICSTRUCTURE_TOP_BOT_TOP,           "Top, bottom, top field"              },
        {VCUDEC_PICSTRUCTURE_BOT_TOP_BOT,           "Bottom, top, bottom field"           },
        {VCUDEC_PICSTRUCTURE_FRAME_X2,              "Frame doubling"                      },
        {VCUDEC_PICSTRUCTURE_FRAME_X3,              "Frame tripling"                      },
        {VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_PREV_BOT, "Top field with previous bottom field"},
        {VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_PREV_TOP, "Bottom field with previous top field"},
        {VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_NEXT_BOT, "Top field with next bottom field"    },
        {VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_NEXT_TOP, "Bottom field with next top field"    },
    };
    return NameText(STRUCTURES, enPicStructure, szBuffer, nSize);
}

char* SessMgr_GetDecoderSdiStillImageString(int enType, char* szBuffer, size_t nSize)
{
    static constexpr Name TYPES[] = {
        {0, "None"}
    };
    return NameText(TYPES, enType, szBuffer, nSize);
}
