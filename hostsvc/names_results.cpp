/**
 * @file names_results.cpp
 * Result codes of the session manager and of the codec unit, in the words that an operator reads.
 */
#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "hostsvc.h"
#include "sessmgr_const.h"
#include "text.h"

using namespace hostsvc;

namespace
{

struct Result
{
    unsigned nCode;
    const char* szSentence;
};

// "The session manager" is the service that holds the codes; "the client program" is what asks it, a command or a web page.
constexpr Result RESULTS[] = {
    {SMGR_ERROR_SUCCESS,                                               "The request succeeded."                                                                    },
    {SMGR_ERROR_GENERIC_FAILURE,                                       "The request failed; no reason was given."                                                  },
    {SMGR_ERROR_INVALID_PARAMETERS,                                    "A parameter of the request is not valid."                                                  },
    {SMGR_ERROR_OUT_OF_MEMORY,                                         "There is not enough memory for the request."                                               },
    {SMGR_ERROR_NAME_IN_USE,                                           "The name is already in use; choose another."                                               },
    {SMGR_ERROR_ID_IN_USE,                                             "The ID is already in use; choose another."                                                 },
    {SMGR_ERROR_ADDRESS_PORT_IN_USE,                                   "The address and port are already in use; change one of them."                              },
    {SMGR_ERROR_LIB_LOCAL_IPC_INIT_ERROR,                              "The client program could not set up its link to the session manager."                      },
    {SMGR_ERROR_LIB_TO_DAEMON_IPC_ERROR,                               "A message could not be sent to the session manager."                                       },
    {SMGR_ERROR_DAEMON_TO_LIB_IPC_GEN_ERROR,                           "A message from the session manager could not be received."                                 },
    {SMGR_ERROR_DAEMON_TO_LIB_IPC_MSG_TYPE_ERROR,                      "A message from the session manager was of an unexpected type."                             },
    {SMGR_ERROR_DAEMON_TO_LIB_IPC_MSG_SEQU_ERROR,                      "A message from the session manager came out of sequence."                                  },
    {SMGR_ERROR_LIB_NOT_INITIALIZED,                                   "The client program made a request before it was initialized."                              },
    {SMGR_ERROR_INVALID_STREAM_NAME,                                   "The stream name is not valid."                                                             },
    {SMGR_ERROR_INVALID_STREAM_TYPE,                                   "The stream type is not valid."                                                             },
    {SMGR_ERROR_INVALID_STREAM_UDP_PORT,                               "The UDP port of the stream is not valid."                                                  },
    {SMGR_ERROR_INVALID_STREAM_ADDRESS,                                "The address of the stream is not valid."                                                   },
    {SMGR_ERROR_INVALID_STREAM_ENCAPSULATION,                          "The encapsulation of the stream is not valid."                                             },
    {SMGR_ERROR_INVALID_STREAM_PAYLOAD,                                "The payload of the stream is not valid."                                                   },
    {SMGR_ERROR_INVALID_STREAM_MTU,                                    "The maximum packet size (MTU) of the stream is not valid."                                 },
    {SMGR_ERROR_INVALID_STREAM_CONTENTS,                               "The contents of the stream are not valid."                                                 },
    {SMGR_ERROR_TOO_MANY_STREAMS,                                      "The maximum number of streams is reached; delete one first."                               },
    {SMGR_ERROR_STREAM_ALREADY_STARTED,                                "The stream is already started."                                                            },
    {SMGR_ERROR_STREAM_IN_USE,                                         "The stream is in use."                                                                     },
    {SMGR_ERROR_NO_MATCHING_CODEC_FOUND,                               "No encoder or decoder matches the request."                                                },
    {SMGR_ERROR_NO_MATCHING_STREAM_FOUND,                              "No stream matches the request."                                                            },
    {SMGR_ERROR_NO_MATCHING_SESSION_FOUND,                             "No session matches the request."                                                           },
    {SMGR_ERROR_SESSION_IN_USE,                                        "The session is in use."                                                                    },
    {SMGR_ERROR_CODEC_ALREADY_STARTED,                                 "The encoder or decoder is already started."                                                },
    {SMGR_ERROR_CODEC_NOT_STARTED,                                     "The encoder or decoder is not started."                                                    },
    {SMGR_ERROR_RTCP_ENABLED_ON_TS_UDP_STREAM,                         "RTCP cannot be enabled on a transport stream over UDP; disable it or use RTP."             },
    {SMGR_ERROR_AUDIO_CHANNELS_IN_USE,                                 "The audio channels are already in use."                                                    },
    {SMGR_ERROR_STREAM_NOT_STARTED,                                    "The stream is not started."                                                                },
    {SMGR_ERROR_VIDEO_DECODER_IN_USE,                                  "The video decoder is already in use."                                                      },
    {SMGR_ERROR_AUDIO_DECODER_IN_USE,                                  "The audio decoder is already in use."                                                      },
    {SMGR_ERROR_ALREADY_IN_LOW_POWER,                                  "The low-power mode is already active."                                                     },
    {SMGR_ERROR_ALREADY_IN_NORMAL_POWER,                               "The normal-power mode is already active."                                                  },
    {SMGR_ERROR_STREAM_ALREADY_PAUSED,                                 "The stream is already paused."                                                             },
    {SMGR_ERROR_STREAM_NOT_PAUSED,                                     "The stream is not paused."                                                                 },
    {SMGR_ERROR_INVALID_STREAM_ID,                                     "The stream ID is not valid."                                                               },
    {SMGR_ERROR_LOGO_IS_UNMOVEABLE,                                    "The logo cannot be moved."                                                                 },
    {SMGR_ERROR_LOGO_FILE_ACCESS,                                      "The logo file cannot be accessed."                                                         },
    {SMGR_ERROR_INVALID_LOGO_FILE,                                     "The logo file is not valid."                                                               },
    {SMGR_ERROR_NO_MATCHING_CONFIG_FILE,                               "No configuration file matches the request."                                                },
    {SMGR_ERROR_STILL_IMAGE_FILE_ACCESS,                               "The still image file cannot be accessed."                                                  },
    {SMGR_ERROR_INPUT_DEVICE_IN_USE,                                   "The input device is already in use."                                                       },
    {SMGR_ERROR_NO_MATCHING_METADATA_FOUND,                            "No metadata source matches the request."                                                   },
    {SMGR_ERROR_METADATA_ALREADY_STARTED,                              "The metadata source is already started."                                                   },
    {SMGR_ERROR_METADATA_NOT_STARTED,                                  "The metadata source is not started."                                                       },
    {SMGR_ERROR_METADATA_UNDELETABLE_SOURCE,                           "The metadata source cannot be deleted."                                                    },
    {SMGR_ERROR_METADATA_SOURCE_IN_USE,                                "The metadata source is in use."                                                            },
    {SMGR_ERROR_TOO_MANY_METADATA,                                     "The maximum number of metadata sources is reached; delete one first."                      },
    {SMGR_ERROR_SERIAL_PORT_UNAVAILABLE_FOR_METADATA,                  "The serial port is not available for metadata."                                            },
    {SMGR_ERROR_TOO_MANY_PENDING_SNAPSHOTS,                            "Too many snapshots are pending; try again when some are complete."                         },
    {SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT,                              "The video format is not supported."                                                        },
    {SMGR_ERROR_OUT_OF_STORAGE_SPACE,                                  "The storage is full; delete files to free space."                                          },
    {SMGR_ERROR_NO_SUCH_SNAPSHOT,                                      "The snapshot does not exist."                                                              },
    {SMGR_ERROR_UNSUPPORTED_API,                                       "The requested function is not supported."                                                  },
    {SMGR_ERROR_TALKBACK_ALREADY_STARTED,                              "Talkback is already started."                                                              },
    {SMGR_ERROR_TALKBACK_NOT_STARTED,                                  "Talkback is not started."                                                                  },
    {SMGR_ERROR_PROFILE_FILE_ACCESS,                                   "The profile file cannot be accessed."                                                      },
    {SMGR_ERROR_UNSUPPORTED_CLIENT_API_VERSION,                        "The version of the client program is not supported; install a matching one."               },
    {SMGR_ERROR_AUDIO_BITRATE_TOO_HIGH_FOR_MODE,                       "The audio bit rate is too high for the selected audio mode."                               },
    {SMGR_ERROR_AUDIO_DRIVER_ACCESS,                                   "The audio driver cannot be accessed."                                                      },
    {SMGR_ERROR_UNSUPPORTED_SAP_STREAM_PARAMETERS,                     "The session announcement (SAP) stream has unsupported parameters."                         },
    {SMGR_ERROR_SESSION_ALREADY_STARTED,                               "The session is already started."                                                           },
    {SMGR_ERROR_SESSION_NOT_STARTED,                                   "The session is not started."                                                               },
    {SMGR_ERROR_INSUFFICIENT_VIDEO_BITRATE,                            "The video bit rate is too low; increase it."                                               },
    {SMGR_ERROR_UNSUPPORTED_OUTPUT_RESOLUTION,                         "The output resolution is not supported."                                                   },
    {SMGR_ERROR_INVALID_GOP_SIZE,                                      "The GOP size is not valid."                                                                },
    {SMGR_ERROR_INVALID_STREAM_OVERHEAD,                               "The bandwidth overhead of the stream is not valid."                                        },
    {SMGR_ERROR_INSUFFICIENT_RIGHTS,                                   "The user does not have the rights that the request requires."                              },
    {SMGR_ERROR_TALKBACK_SERVICE_ADMINISTRATIVELY_DISABLED,            "The talkback service is disabled by the administrator."                                    },
    {SMGR_ERROR_TRAFFIC_SHAPING_UNSUPPORTED_FOR_RTMP,                  "Traffic shaping is not supported for RTMP streams."                                        },
    {SMGR_ERROR_INVALID_GOP_STRUCTURE,                                 "The GOP structure is not valid."                                                           },
    {SMGR_ERROR_NO_MATCHING_NET_CONN_FOUND,                            "No network connection matches the request."                                                },
    {SMGR_ERROR_INVALID_ENTROPY_CODING,                                "The entropy coding is not valid."                                                          },
    {SMGR_ERROR_CODEC_ALREADY_MUTED,                                   "The encoder or decoder is already muted."                                                  },
    {SMGR_ERROR_CODEC_NOT_MUTED,                                       "The encoder or decoder is not muted."                                                      },
    {SMGR_ERROR_NO_MATCHING_INPUT_FOUND,                               "No input matches the request."                                                             },
    {SMGR_ERROR_AES_ENABLED_ON_NON_TS_UDP_STREAM,                      "AES encryption can only be enabled on transport streams over UDP."                         },
    {SMGR_ERROR_FEC_ENABLED_ON_NON_TS_UDP_STREAM,                      "Forward error correction (FEC) can only be enabled on transport streams over UDP."         },
    {SMGR_ERROR_OUT_OF_ENCODING_RESOURCES,                             "No encoding resources are left; stop another encoder first."                               },
    {SMGR_ERROR_STC_SOURCE_FIXED_FOR_SDI_AUDIO,                        "The system time clock (STC) source cannot be changed for SDI audio."                       },
    {SMGR_ERROR_NON_MULTICAST_ADVERTISEMENT_ADDRESS,                   "The advertisement address must be a multicast address."                                    },
    {SMGR_ERROR_NO_PUBLISH_NAME,                                       "The publish name of the stream is missing; enter one."                                     },
    {SMGR_ERROR_HDCP_STATUS_UNAVAILABLE_FOR_COMPONENT,                 "The HDCP status is not available for this component."                                      },
    {SMGR_ERROR_INVALID_INTRA_REFRESH_MODE,                            "The intra refresh mode is not valid."                                                      },
    {SMGR_ERROR_INVALID_INTRA_REFRESH_RATE,                            "The intra refresh rate is not valid."                                                      },
    {SMGR_ERROR_INVALID_STREAM_VIDEO_PID,                              "The video PID of the stream is not valid."                                                 },
    {SMGR_ERROR_INVALID_STREAM_AUDIO_PID,                              "The audio PID of the stream is not valid."                                                 },
    {SMGR_ERROR_INVALID_STREAM_DATA_PID,                               "The data PID of the stream is not valid."                                                  },
    {SMGR_ERROR_INVALID_STREAM_DUPLICATE_PIDS,                         "A PID is used twice in the stream; make every PID different."                              },
    {SMGR_ERROR_VIDEO_CAPTURE_NOT_STARTED_ON_INPUT,                    "Video capture is not started on the input."                                                },
    {SMGR_ERROR_INVALID_LANGUAGE_CODE,                                 "The language code is not valid."                                                           },
    {SMGR_ERROR_BNC_OUTPUT_UNAVAILABLE,                                "The BNC output is not available."                                                          },
    {SMGR_ERROR_IPC_RESPONSE_TIMEOUT_ERROR,                            "The session manager did not answer in time."                                               },
    {SMGR_ERROR_DAEMON_GONE,                                           "The session manager is no longer running."                                                 },
    {SMGR_ERROR_MULTI_AUDIO_UNSUPPORTED_FOR_ENCAPSULATION,             "The encapsulation of the stream supports only one audio source."                           },
    {SMGR_ERROR_MULTI_VIDEO_STREAMING_UNSUPPORTED,                     "A stream supports only one video source."                                                  },
    {SMGR_ERROR_MULTI_DATA_STREAMING_UNSUPPORTED,                      "A stream supports only one data source."                                                   },
    {SMGR_ERROR_NO_STARTUP_CONFIG_FILE,                                "There is no startup configuration file."                                                   },
    {SMGR_ERROR_NO_SUCH_LOGO,                                          "The logo does not exist."                                                                  },
    {SMGR_ERROR_NO_SUCH_STILL_IMAGE,                                   "The still image does not exist."                                                           },
    {SMGR_ERROR_INSUFFICIENT_ETHERNET_BANDWIDTH_FOR_STREAM,            "The Ethernet bandwidth is too low for the stream; lower its bit rate."                     },
    {SMGR_ERROR_MULTI_DATA_UNSUPPORTED_FOR_ENCAPSULATION,              "The encapsulation of the stream supports only one data source."                            },
    {SMGR_ERROR_INVALID_COT_PARAMETER_FOR_KLV,                         "Cursor on Target parameters cannot be set for KLV metadata."                               },
    {SMGR_ERROR_INVALID_BAUDRATE_FOR_NON_SERIAL_SOURCE,                "A baud rate can only be set for a serial source."                                          },
    {SMGR_ERROR_INVALID_BAUDRATE,                                      "The baud rate is not valid."                                                               },
    {SMGR_ERROR_INVALID_SERIAL_STANDARD_FOR_NON_SERIAL_SOURCE,         "A serial standard can only be set for a serial source."                                    },
    {SMGR_ERROR_INVALID_NET_PARAMETER_FOR_NON_INET_SOURCE,             "Network parameters can only be set for a network source."                                  },
    {SMGR_ERROR_DUPLICATE_AUDIO_ENCODERS_IN_STREAM,                    "An audio encoder is selected twice in the stream."                                         },
    {SMGR_ERROR_STREAM_IS_PAUSING,                                     "The stream is being paused; try again in a moment."                                        },
    {SMGR_ERROR_STREAM_IS_RESUMING,                                    "The stream is being resumed; try again in a moment."                                       },
    {SMGR_ERROR_INVALID_STREAM_LATENCY,                                "The latency of the stream is not valid."                                                   },
    {SMGR_ERROR_INVALID_PICTURE_RATE,                                  "The picture rate is not valid."                                                            },
    {SMGR_ERROR_DUPLICATE_METADATA_SOURCES_IN_STREAM,                  "A metadata source is selected twice in the stream."                                        },
    {SMGR_ERROR_TRAFFIC_SHAPING_UNSUPPORTED_FOR_SRT,                   "Traffic shaping is not supported for SRT streams."                                         },
    {SMGR_ERROR_LOGO_FILENAME_TOO_LONG,                                "The file name of the logo is too long."                                                    },
    {SMGR_ERROR_LOGO_IN_USE,                                           "The logo is in use."                                                                       },
    {SMGR_ERROR_INVALID_STREAM_ENCRYPTION,                             "The encryption of the stream is not valid."                                                },
    {SMGR_ERROR_STREAM_NEEDS_PASSPHRASE,                               "The stream needs a passphrase; enter one."                                                 },
    {SMGR_ERROR_STREAM_PASSPHRASE_TOO_SHORT,                           "The stream passphrase is too short."                                                       },
    {SMGR_ERROR_STILL_IMAGE_IN_USE,                                    "The still image is in use."                                                                },
    {SMGR_ERROR_INVALID_CONFIG_FILE,                                   "The configuration file is not valid."                                                      },
    {SMGR_ERROR_ADDRESS_SPECIFIED_FOR_SRT_LISTENER_STREAM,             "A stream in SRT listener mode takes no address; remove the address."                       },
    {SMGR_ERROR_PRO_MPEG_FEC_ENABLED_ON_NON_TS_RTP_STREAM,             "Pro-MPEG FEC can only be enabled on transport streams over RTP."                           },
    {SMGR_ERROR_INVALID_NUM_OF_FEC_COLUMNS,                            "The number of FEC columns is not valid."                                                   },
    {SMGR_ERROR_INVALID_NUM_OF_FEC_ROWS,                               "The number of FEC rows is not valid."                                                      },
    {SMGR_ERROR_INVALID_NUM_OF_FEC_PKTS_PER_GROUP,                     "The number of packets per FEC group is not valid."                                         },
    {SMGR_ERROR_STREAM_VIDEO_VS_KLV_INPUT_MISMATCH,                    "The video and the KLV metadata of the stream come from different inputs."                  },
    {SMGR_ERROR_MAX_OF_ONE_ROI_PER_VIDEO_ENCODER,                      "A video encoder can have only one region of interest."                                     },
    {SMGR_ERROR_INVALID_STREAM_PCR_PID,                                "The PCR PID of the stream is not valid."                                                   },
    {SMGR_ERROR_INVALID_STREAM_PMT_PID,                                "The PMT PID of the stream is not valid."                                                   },
    {SMGR_ERROR_INVALID_STREAM_PROGRAM_NUMBER,                         "The program number of the stream is not valid."                                            },
    {SMGR_ERROR_INVALID_TS_STREAM_ID,                                  "The transport stream ID is not valid."                                                     },
    {SMGR_ERROR_SAP_SERVICE_ADMINISTRATIVELY_DISABLED,                 "The session announcement (SAP) service is disabled by the administrator."                  },
    {SMGR_ERROR_SAP_ALREADY_STARTED,                                   "The session announcement (SAP) service is already started."                                },
    {SMGR_ERROR_SAP_ALREADY_STOPPED,                                   "The session announcement (SAP) service is already stopped."                                },
    {SMGR_ERROR_DELETE_UNALLOWED_FOR_SAP_STREAM,                       "A session announcement (SAP) stream cannot be deleted."                                    },
    {SMGR_ERROR_SERIAL_PORT_UNAVAILABLE_FOR_PASSTHROUGH,               "The serial port is not available for passthrough."                                         },
    {SMGR_ERROR_PASSTHROUGH_ALREADY_STARTED,                           "Passthrough is already started."                                                           },
    {SMGR_ERROR_PASSTHROUGH_NOT_STARTED,                               "Passthrough is not started."                                                               },
    {SMGR_ERROR_ROI_ALREADY_ENABLED,                                   "The region of interest is already enabled."                                                },
    {SMGR_ERROR_ROI_ALREADY_DISABLED,                                  "The region of interest is already disabled."                                               },
    {SMGR_ERROR_NO_MATCHING_ROI_FOUND,                                 "No region of interest matches the request."                                                },
    {SMGR_ERROR_INVALID_INTRA_REFRESH_MODE_GOPSTRUCTURE_COMBO,         "The intra refresh mode and the GOP structure cannot be combined."                          },
    {SMGR_ERROR_INVALID_STREAM_FLIPPING_ADDRESS,                       "The stream flipping address is not valid."                                                 },
    {SMGR_ERROR_NO_MATCHING_RECORDING_FOUND,                           "No recording matches the request."                                                         },
    {SMGR_ERROR_INVALID_DECODER_ID,                                    "The decoder ID is not valid."                                                              },
    {SMGR_ERROR_RECORDING_ALREADY_STARTED,                             "The recording is already started."                                                         },
    {SMGR_ERROR_RECORDING_NOT_STARTED,                                 "The recording is not started."                                                             },
    {SMGR_ERROR_INSUFFICIENT_STORAGE_SPACE,                            "There is not enough free storage space for the request."                                   },
    {SMGR_ERROR_STORAGE_DEVICE_UNAVAILABLE,                            "The storage device is not available."                                                      },
    {SMGR_ERROR_UNLIMITED_SNAPSHOTS_NOT_SUPPORTED_FOR_LOCATION,        "The snapshot location requires a limit on snapshots; set one."                             },
    {SMGR_ERROR_NFS_NOT_ENABLED,                                       "The network file system (NFS) is not enabled."                                             },
    {SMGR_ERROR_SNAPSHOT_MEDIA_MAX_STORAGE_LIMIT_EXCEEDED,             "The snapshot storage limit is exceeded; delete some snapshots."                            },
    {SMGR_ERROR_USB_NOT_AVAILABLE,                                     "The USB storage device is not available."                                                  },
    {SMGR_ERROR_VIDEO_ENCODER_BEING_RECORDED,                          "The video encoder is being recorded; stop the recording first."                            },
    {SMGR_ERROR_RECORDING_ALREADY_EXISTS,                              "The recording already exists."                                                             },
    {SMGR_ERROR_LIMITED_SNAPSHOTS_NOT_SUPPORTED_FOR_LOCATION,          "The snapshot location allows no limit on snapshots; remove the limit."                     },
    {SMGR_ERROR_UNSUPPORTED_RECORDING_FILE_SYSTEM,                     "Recording is not supported on the file system of the storage device."                      },
    {SMGR_ERROR_SD_NOT_AVAILABLE,                                      "The SD card is not available."                                                             },
    {SMGR_ERROR_SD_IS_READ_ONLY,                                       "The SD card is read-only; check its write-protect switch."                                 },
    {SMGR_ERROR_NO_STORAGE_SUPPORT,                                    "Storage devices are not supported on this unit."                                           },
    {SMGR_ERROR_VIDEO_REQUIRED_FOR_RECORDING,                          "A recording must include video."                                                           },
    {SMGR_ERROR_MULTI_AUDIO_MP4_RECORDING_UNSUPPORTED,                 "An MP4 recording supports only one audio source."                                          },
    {SMGR_ERROR_AUDIO_ENCODER_BEING_RECORDED,                          "The audio encoder is being recorded; stop the recording first."                            },
    {SMGR_ERROR_EXPORT_DESTINATION_LOCK_FAILURE,                       "The export destination could not be locked."                                               },
    {SMGR_ERROR_RECORDING_LIMIT_SIZE_TOO_SMALL,                        "The size limit of the recording is too small."                                             },
    {SMGR_ERROR_RECORDING_SEGMENT_SIZE_TOO_SMALL,                      "The segment size of the recording is too small."                                           },
    {SMGR_ERROR_INTRA_REFRESH_RECORDING_UNSUPPORTED,                   "Video with intra refresh cannot be recorded; disable intra refresh."                       },
    {SMGR_ERROR_UNSUPPORTED_AUDIO_ALGORITHM_FOR_MP4_RECORDING,         "The audio coding is not supported in MP4 recordings."                                      },
    {SMGR_ERROR_INVALID_METADATA_RELAY_TTL,                            "The TTL of the metadata relay is not valid."                                               },
    {SMGR_ERROR_INVALID_METADATA_RELAY_TOS,                            "The type of service (TOS) of the metadata relay is not valid."                             },
    {SMGR_ERROR_INVALID_METADATA_RELAY_UDP_PORT,                       "The UDP port of the metadata relay is not valid."                                          },
    {SMGR_ERROR_UNSUPPORTED_RELAY_FOR_KLV_METADATA,                    "KLV metadata cannot be relayed."                                                           },
    {SMGR_ERROR_CLASSIFYING_COUNTRY_UNSPECIFIED,                       "The classifying country is missing; enter one."                                            },
    {SMGR_ERROR_INVALID_CLASSIFYING_COUNTRY,                           "The classifying country is not valid."                                                     },
    {SMGR_ERROR_OBJECT_COUNTRY_UNSPECIFIED,                            "The object country is missing; enter one."                                                 },
    {SMGR_ERROR_INVALID_OBJECT_COUNTRY,                                "The object country is not valid."                                                          },
    {SMGR_ERROR_INVALID_CLASSIFICATION,                                "The security classification is not valid."                                                 },
    {SMGR_ERROR_NO_RELAYS_CONFIGURED,                                  "No relays are configured; add one first."                                                  },
    {SMGR_ERROR_TALKBACK_INVALID_DEST_ADDRESS,                         "The destination address of talkback is not valid."                                         },
    {SMGR_ERROR_UNSUPPORTED_MISSION_ID_FOR_COT_METADATA,               "Cursor on Target does not support a mission ID."                                           },
    {SMGR_ERROR_UNSUPPORTED_MISSION_RECLASSIFICATION_FOR_COT_METADATA, "Cursor on Target does not support mission reclassification."                               },
    {SMGR_ERROR_INVALID_RECORDING_FORMAT,                              "The recording format is not valid."                                                        },
    {SMGR_ERROR_RECORDING_DURATION_TOO_SHORT,                          "The duration of the recording is too short."                                               },
    {SMGR_ERROR_RECORDING_SEGMENTS_LONGER_THAN_DURATION,               "The segments are longer than the whole recording; shorten them."                           },
    {SMGR_ERROR_RECORDING_SEGMENTS_LARGER_THAN_SIZE,                   "The segments are larger than the whole recording; reduce their size."                      },
    {SMGR_ERROR_RECORDING_INVALID_AUTO_EXPORT_DESTINATION,             "The automatic export destination of the recording is not valid."                           },
    {SMGR_ERROR_TOO_MANY_STORED_SNAPSHOTS,                             "Too many snapshots are stored; delete some."                                               },
    {SMGR_ERROR_INVALID_CHARS_IN_FILENAME,                             "The file name contains characters that are not allowed."                                   },
    {SMGR_ERROR_SNAPSHOTS_DISABLED,                                    "Snapshots are disabled."                                                                   },
    {SMGR_ERROR_INVALID_STREAM_ODD_RTP_PORT,                           "The RTP port of the stream is odd; choose an even port."                                   },
    {SMGR_ERROR_CLOSE_CAPTIONING_EXTRACTION_DISABLED,                  "The extraction of closed captions is disabled."                                            },
    {SMGR_ERROR_HEVC_UNSUPPORTED_IN_RTMP_STREAM,                       "H.265/HEVC video is not supported in RTMP streams."                                        },
    {SMGR_ERROR_HEVC_UNSUPPORTED_IN_DIRECT_RTP_STREAM,                 "H.265/HEVC video is not supported directly over RTP; use a transport stream."              },
    {SMGR_ERROR_STILL_IMAGE_UNSUPPORTED_IN_HEVC_STREAM,                "A still image is not supported in H.265/HEVC streams."                                     },
    {SMGR_ERROR_SNAPSHOT_FILENAME_TOO_LONG,                            "The file name of the snapshot is too long."                                                },
    {SMGR_ERROR_INVALID_ENTROPY_CODING_FOR_HEVC,                       "The entropy coding is not valid for H.265/HEVC video."                                     },
    {SMGR_ERROR_INVALID_AUDIO_FOR_VIDEO,                               "The selected audio cannot be combined with the selected video."                            },
    {SMGR_ERROR_INVALID_METADATA_FOR_VIDEO,                            "The selected metadata cannot be combined with the selected video."                         },
    {SMGR_ERROR_ANALOG_AUDIO_LOCKED_TO_WRONG_VIDEO_INPUT,              "The analog audio is locked to the wrong video input."                                      },
    {SMGR_ERROR_INVALID_RESIZE_MODE_FOR_HEVC,                          "The resize mode is not valid for H.265/HEVC video."                                        },
    {SMGR_ERROR_INVALID_SUBPARTITIONING_FOR_HEVC,                      "The sub-partitioning is not valid for H.265/HEVC video."                                   },
    {SMGR_ERROR_INVALID_INTRA_REFRESH_FOR_HEVC,                        "The intra refresh is not valid for H.265/HEVC video."                                      },
    {SMGR_ERROR_INVALID_BITRATE,                                       "The bit rate is not valid."                                                                },
    {SMGR_ERROR_METADATA_DECIMATION_ONLY_SUPPORTED_ON_KLV_SDI_SOURCES, "Decimation can only be set for a KLV over SDI metadata source."                            },
    {SMGR_ERROR_METADATA_SOURCE_HAS_FIXED_INPUT,                       "The input of this metadata source cannot be changed."                                      },
    {SMGR_ERROR_METADATA_INPUT_ONLY_SUPPORTED_ON_KLV_SDI_SOURCES,      "The input can only be set for a KLV over SDI metadata source."                             },
    {SMGR_ERROR_INVALID_FILENAME_PATH,                                 "The path of the file is not valid."                                                        },
    {SMGR_ERROR_FILENAME_TOO_LONG,                                     "The file name is too long."                                                                },
    {SMGR_ERROR_INVALID_AUDIO_LEVEL,                                   "The audio level is not valid."                                                             },
    {SMGR_ERROR_INVALID_KLV_DECIMATION_FACTOR,                         "The KLV decimation factor is not valid."                                                   },
    {SMGR_ERROR_INVALID_KLV_DECIMATION_REF_ENCODER,                    "The reference encoder of the KLV decimation is not valid."                                 },
    {SMGR_ERROR_VIDEO_ENCODER_ALREADY_CONTROLLED_BY_ANOTHER_STREAM,    "The video encoder is already controlled by another stream."                                },
    {SMGR_ERROR_NAE_UNSUPPORTED_WITH_B_FRAMES,                         "Network adaptive encoding is not supported with B-frames; disable one of them."            },
    {SMGR_ERROR_UNSUPPORTED_B_FRAMES_ON_NAE_CONTROLLED_ENCODER,        "An encoder under network adaptive encoding does not support B-frames."                     },
    {SMGR_ERROR_UNSUPPORTED_PRIVACY_ROI_ON_INTERLACED_VIDEO,           "A privacy region of interest is not supported on interlaced video."                        },
    {SMGR_ERROR_INVALID_STREAM_PASSPHRASE,                             "The stream passphrase is not valid."                                                       },
    {SMGR_ERROR_LED_ALREADY_BLINKING,                                  "The LED is already blinking."                                                              },
    {SMGR_ERROR_LED_NOT_BLINKING,                                      "The LED is not blinking."                                                                  },
    {SMGR_ERROR_INCONSISTENT_SAP_ANNOUNCEMENT_ADDRESS_FAMILY,          "The stream and its session announcement (SAP) differ in IP version."                       },
    {SMGR_ERROR_NO_DECODER_ASSIGNED_TO_STREAM,                         "No decoder is assigned to the stream."                                                     },
    {SMGR_ERROR_NON_MULTICAST_SAP_LISTENING_ADDRESS,                   "The session announcement (SAP) listening address must be a multicast address."             },
    {SMGR_ERROR_INVALID_V4_SAP_LISTENING_ADDRESS,                      "The session announcement (SAP) IPv4 listening address is not valid."                       },
    {SMGR_ERROR_INVALID_V6_SAP_LISTENING_ADDRESS,                      "The session announcement (SAP) IPv6 listening address is not valid."                       },
    {SMGR_ERROR_INVALID_SAP_ANNOUNCEMENT_ADDRESS,                      "The session announcement (SAP) address is not valid."                                      },
    {SMGR_ERROR_IPV4_ADDRESS_USED_WITH_IPV4_DISABLED,                  "An IPv4 address is used but IPv4 is disabled; enable it or change the address."            },
    {SMGR_ERROR_IPV6_ADDRESS_USED_WITH_IPV6_DISABLED,                  "An IPv6 address is used but IPv6 is disabled; enable it or change the address."            },
    {SMGR_ERROR_INVALID_METADATA_SOURCE_ADDRESS,                       "The address of the metadata source is not valid."                                          },
    {SMGR_STREAM_NAME_IN_USE,                                          "The stream name is already in use; choose another."                                        },
    {SMGR_SAP_SESSION_NAME_IN_USE,                                     "The session announcement (SAP) session name is already in use; choose another."            },
    {SMGR_ERROR_NON_MULTICAST_ADDRESS,                                 "The address must be a multicast address."                                                  },
    {SMGR_ERROR_NAS_ACCESS_DENIED,                                     "Access to the network-attached storage (NAS) was denied; check the user name and password."},
    {SMGR_ERROR_UNSUPPORTED_H264_INTERLACED_VIDEO,                     "Interlaced H.264 video is not supported."                                                  },
    {SMGR_ERROR_UNSUPPORTED_SECOND_4K_H264_422_10BIT_VIDEO,            "A second 4K H.264 4:2:2 10-bit video is not supported."                                    },
    {SMGR_ERROR_UNSUPPORTED_H264_INTRA_REFRESH_SUPPORT,                "H.264 video with intra refresh is not supported."                                          },
    {SMGR_ERROR_INVALID_STREAM_NETWORK_INTERFACE,                      "The network interface of the stream is not valid."                                         },
    {SMGR_ERROR_INVALID_STREAM_SECONDARY_NETWORK_INTERFACE,            "The secondary network interface of the stream is not valid."                               },
    {SMGR_IS_TEXT_DESCRIBED_ERROR,                                     "The request failed; a separate text describes the error."                                  },
    {SMGR_ERROR_STREAM_ALREADY_ASSIGNED,                               "The stream is already assigned to a decoder."                                              },
    {SMGR_ERROR_BNC_OUTPUT_ALREADY_ASSIGNED,                           "The BNC output is already assigned to a decoder."                                          },
    {SMGR_IS_SUCCESS_WITH_WARNING,                                     "The request succeeded, but with a warning."                                                },
    {SMGR_WARNING_STREAM_HAS_UNSTARTED_CONTENT_SOURCE,                 "The request succeeded, but a content source of the stream is not started."                 },
    {SMGR_WARNING_UNABLE_TO_RESOLVE_HOSTNAME,                          "The request succeeded, but the host name could not be resolved."                           },
    {SMGR_ERROR_RTSP_NOT_STARTED,                                      "The request succeeded, but RTSP was not started."                                          },
    {SMGR_ERROR_RTSP_ALREADY_STARTED,                                  "The request succeeded, but RTSP was already started."                                      },
};

static_assert(std::size(RESULTS) == 249, "one sentence for each result code");
static_assert(std::adjacent_find(std::begin(RESULTS), std::end(RESULTS),
                  [](const Result& left, const Result& right) { return left.nCode >= right.nCode; }) == std::end(RESULTS),
    "the search relies on ascending codes, none twice");

// The flags make the lead digit of a flagged code 1 or more: its hexadecimal form always has all 8 digits.
char* UnknownFlaggedText(int nErrorCode, char* szBuffer, size_t nSize)
{
    constexpr std::string_view LONGEST = "Unknown (-2147483648, 0x80000000)";
    return BuildText<LONGEST.size()>(szBuffer, nSize,
        [=](char* pEnd)
        {
            pEnd = Append(pEnd, "Unknown (");
            pEnd = AppendNumber(pEnd, nErrorCode);
            pEnd = Append(pEnd, ", 0x");
            char* pDigits = pEnd;
            pEnd = std::to_chars(pDigits, pDigits + 8, static_cast<unsigned>(nErrorCode), 16).ptr;
            std::transform(pDigits, pEnd, pDigits, [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
            return Append(pEnd, ")");
        });
}

} // namespace

char* SessMgr_GetErrorString(int nErrorCode, char* szBuffer, size_t nSize)
{
    const auto nCode = static_cast<unsigned>(nErrorCode);
    const Result* pResult =
        std::lower_bound(std::begin(RESULTS), std::end(RESULTS), nCode, [](const Result& result, unsigned n) { return result.nCode < n; });
    if (pResult != std::end(RESULTS) && pResult->nCode == nCode) return CopyText(pResult->szSentence, szBuffer, nSize);
    if ((nCode & (SMGR_IS_TEXT_DESCRIBED_ERROR | SMGR_IS_SUCCESS_WITH_WARNING)) != 0)
        return UnknownFlaggedText(nErrorCode, szBuffer, nSize);
    return UnknownText(nErrorCode, szBuffer, nSize);
}

char* SessMgr_GetVCUDecoderErrorString(int nErrorCode, char* szBuffer, size_t nSize)
{
    if (nErrorCode == 0) return CopyText("No error", szBuffer, nSize);
    return UnknownText(nErrorCode, szBuffer, nSize);
}
