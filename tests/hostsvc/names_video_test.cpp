// The texts of the video framer's and the hardware video decoder's enumerations, and of the code points of the standards.
#include "hostsvc.h"
#include "service_text.h"

TEST(VFramerState, EveryStateHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_VFRAMER_STATE_UNSUPPORTED, "Unsupported"},
        {SMGR_VFRAMER_STATE_INVALID,     "Invalid"    },
        {SMGR_VFRAMER_STATE_UNKNOWN,     "Unknown"    },
        {SMGR_VFRAMER_STATE_IDLE,        "Idle"       },
        {SMGR_VFRAMER_STATE_ACTIVE,      "Active"     },
    };
    ExpectNames(SessMgr_GetVFramerStateString, -10, 10, NAMES);
}

TEST(VideoColorType, EveryTypeHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_VIDEO_COLOR_TYPE_UNKNOWN,    "Unknown"     },
        {SMGR_VIDEO_COLOR_TYPE_420_8BIT,   "4:2:0 8-bit" },
        {SMGR_VIDEO_COLOR_TYPE_420_10BIT,  "4:2:0 10-bit"},
        {SMGR_VIDEO_COLOR_TYPE_422_8BIT,   "4:2:2 8-bit" },
        {SMGR_VIDEO_COLOR_TYPE_422_10BIT,  "4:2:2 10-bit"},
        {SMGR_VIDEO_COLOR_TYPE_MONOCHROME, "Monochrome"  },
        {SMGR_VIDEO_COLOR_TYPE_444,        "4:4:4"       },
    };
    ExpectNames(SessMgr_GetVideoColorTypeString, -10, 20, NAMES);
}

TEST(VideoHDRType, EveryTypeHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_VFRAMER_HDR_TYPE_INVALID,     "Invalid"    },
        {SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED, "Unspecified"},
        {SMGR_VFRAMER_HDR_TYPE_SDR,         "SDR"        },
        {SMGR_VFRAMER_HDR_TYPE_HLG,         "HLG"        },
        {SMGR_VFRAMER_HDR_TYPE_PQ,          "PQ"         },
        {SMGR_VFRAMER_HDR_TYPE_CUSTOM,      "Custom"     },
    };
    ExpectNames(SessMgr_GetVideoHDRTypeString, -10, 20, NAMES);
}

TEST(VCUDecoderState, EveryStateHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_VCUDEC_STATE_INVALID,                 "Invalid"                },
        {SMGR_VCUDEC_STATE_UNKNOWN,                 "Unknown"                },
        {SMGR_VCUDEC_STATE_IDLE,                    "Idle"                   },
        {SMGR_VCUDEC_STATE_ACTIVE,                  "Active"                 },
        {SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY, "Idle (VCU lacks memory)"},
        {SMGR_VCUDEC_STATE_STOP,                    "Stopped"                },
    };
    ExpectNames(SessMgr_GetVCUDecoderStateString, -10, 20, NAMES);
}

TEST(VCUDecoderPicStructure, EveryStructureHasItsName)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVCUDecoderPicStructureString, -10, 30, NAMES);
}

TEST(DecoderSdiStillImage, OnlyNoneHasAName)
{
    ExpectNames(SessMgr_GetDecoderSdiStillImageString, -10, 20,
        {
            {0, "None"}
    });
}

TEST(VideoProfile, H264)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoProfileString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_H264));
}

TEST(VideoProfile, H265)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoProfileString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_H265));
}

TEST(VideoProfile, MPEG2)
{
    static const std::map<int, std::string> NAMES = {
        {0, "4:2:2"             },
        {1, "High"              },
        {2, "Spatially Scalable"},
        {3, "SNR Scalable"      },
        {4, "Main"              },
        {5, "Simple"            },
        {8, "4:2:2"             },
    };
    ExpectNames(SessMgr_GetVideoProfileString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2));
}

TEST(VideoProfile, MPEG4)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoProfileString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4));
}

TEST(VideoLevel, H264)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoLevelString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_H264));
}

TEST(VideoLevel, H265)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoLevelString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_H265));
}

TEST(VideoLevel, MPEG2)
{
    static const std::map<int, std::string> NAMES = {
        {2,  "High"     },
        {4,  "High"     },
        {5,  "Main"     },
        {6,  "High 1440"},
        {8,  "Main"     },
        {10, "Low"      },
    };
    ExpectNames(SessMgr_GetVideoLevelString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2));
}

TEST(VideoLevel, MPEG4)
{
    static const std::map<int, std::string> NAMES = {
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
    ExpectNames(SessMgr_GetVideoLevelString, -10, 300, NAMES, static_cast<int>(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4));
}

TEST(VideoProfileAndLevel, UnknownWhereTheCodingHasNone)
{
    for (int enCompression : {0, 1, 3, 1002, 1005, 2000, 2001, 2002, 2003, 2004, 2005, -1, INT_MIN, INT_MAX})
    {
        for (int nValue : {0, 1, 4, 100, -1, INT_MIN, INT_MAX})
        {
            EXPECT_EQ(Text(SessMgr_GetVideoProfileString, nValue, enCompression), Unknown(nValue)) << "compression " << enCompression;
            EXPECT_EQ(Text(SessMgr_GetVideoLevelString, nValue, enCompression), Unknown(nValue)) << "compression " << enCompression;
        }
    }
}

namespace
{

// Expects the names, and Reserved for every other code point of 8 bits.
void ExpectCodePoints(char* (*service)(unsigned int, char*, size_t), const std::map<unsigned int, std::string>& names)
{
    for (unsigned int nCodePoint = 0; nCodePoint <= 255; ++nCodePoint)
    {
        const auto name = names.find(nCodePoint);
        EXPECT_EQ(Text(service, nCodePoint), name == names.end() ? "Reserved" : name->second) << "code point " << nCodePoint;
    }
    EXPECT_EQ(Text(service, 256U), "Unknown (256)");
    EXPECT_EQ(Text(service, 2147483648U), "Unknown (2147483648)");
    EXPECT_EQ(Text(service, UINT_MAX), "Unknown (4294967295)");
}

} // namespace

TEST(VideoColourPrimaries, EveryCodePointHasItsName)
{
    static const std::map<unsigned int, std::string> NAMES = {
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
    ExpectCodePoints(SessMgr_GetVideoColourPrimariesString, NAMES);
}

TEST(VideoTransferCharacteristics, EveryCodePointHasItsName)
{
    static const std::map<unsigned int, std::string> NAMES = {
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
    ExpectCodePoints(SessMgr_GetVideoTransferCharacteristicsString, NAMES);
}

TEST(VideoMatrixCoefficients, EveryCodePointHasItsName)
{
    static const std::map<unsigned int, std::string> NAMES = {
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
    ExpectCodePoints(SessMgr_GetVideoMatrixCoefficientsString, NAMES);
}
