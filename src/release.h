/*
 * The release, as the version record, the tool and CMake describe it. CMake reads this file line by line, so every definition
 * keeps to one line.
 */
#ifndef RELEASE_H
#define RELEASE_H

#define RELEASE_VERSION          "1.3.2" /* of the project: major, minor, patch */
#define RELEASE_MAJOR            1
#define RELEASE_MINOR            3
#define RELEASE_REVISION         "22816" /* source revision */
#define RELEASE_BUILD_IDENTIFIER "tarvex4_dec_v1.3.2-10"
#define RELEASE_DESCRIPTION      "Statistics Printing Library"
#define RELEASE_COPYRIGHT        "Copyright (c) 2022 Maintainers"
#define RELEASE_EPOCH            1654531615 /* 2022-06-06 16:06:55 UTC, the moment that a rebuild carries */

#endif
