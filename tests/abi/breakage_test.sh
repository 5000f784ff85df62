#!/bin/sh
# breakage_test.sh SOURCE SCRATCH CXX: changes a copy of the interface in many ways, one at a time, and expects scripts/abi to
# report each as what it is, incompatible or compatible.
set -eu
source=$1 scratch=$2
export CXX="$3"
command -v abidiff >/dev/null || { echo "abidiff is not installed"; exit 77; }
status=0
cases=0

rm -rf "$scratch"
mkdir -p "$scratch/original/scripts"
cp -R "$source/include" "$source/src" "$source/hostsvc" "$source/abi" "$scratch/original"
cp "$source/scripts/abi" "$scratch/original/scripts"
rm "$scratch/original/src/record_layout.cpp" # its assertions would not let a changed record compile
cd "$scratch/original"

# build LIBRARY [OPTION...]: in the current folder; without optimisation, which is quicker and no part of the interface.
build()
{
    library=$1
    shift
    case $library in
    libstats) set -- "$@" src/*.cpp -Wl,--version-script=src/libstats.map ;;
    libhostsvc) set -- "$@" hostsvc/*.cpp -Wl,--version-script=hostsvc/hostsvc.map ;;
    headers) return ;; # scripts/abi makes it
    esac
    "$CXX" -std=c++20 -O0 -g -w -fPIC -shared -ffile-prefix-map="$PWD=." -Iinclude -Ihostsvc -o "$library.so" "$@"
}

# check EXPECTED [START [TEXT]]: scripts/abi exits with EXPECTED, a line that starts with START and TEXT somewhere.
check()
{
    cases=$((cases + 1))
    actual=0
    scripts/abi check libstats.so libhostsvc.so >log 2>&1 || actual=$?
    if [ $actual -eq "$1" ] && grep -q "^${2-}" log && grep -qF -e "${3-}" log; then return; fi
    echo "$name: expected exit $1, a line \"${2-}...\" and \"${3-}\"; exit $actual with:"
    cat log
    status=1
}

# changed LIBRARY VERDICT TEXT FILE SED [FILE SED]...: the description of LIBRARY tells what each SED script does to its FILE.
changed()
{
    library=$1 verdict=$2 text=$3
    shift 3
    name=$*
    rm -rf ../changed
    cp -R ../original ../changed
    cd ../changed
    while [ $# -gt 0 ]; do
        sed -i "$2" "$1"
        ! cmp -s "$1" "../original/$1" || { echo "$2 changes nothing in $1"; exit 1; }
        shift 2
    done
    build "$library"
    check 1 "$library: $verdict with abi/$library.abi" "$text"
}

types=include/sessmgr_types.h
in_counters='/^typedef struct tagSMGR_TDEMUX_COUNTERS$/,/^}/'

# ---- What is no change ----

name=unchanged
build libstats
build libhostsvc
check 0 'libstats, libhostsvc and headers are what abi/ describes$'

name="another SONAME"
cp -R . ../changed
cd ../changed
build libstats -Wl,-soname,libstats.so.7
build libhostsvc -Wl,-soname,libhostsvc.so.7
check 0 'libstats, libhostsvc and headers are what abi/ describes$'

# ---- Records ----

changed libstats incompatible "'int nInserted'" $types "$in_counters s/^    int  *iLastError;/    int nInserted;\n&/"
changed libstats incompatible "'time_t tLastReadPacketListOverflow'" $types "$in_counters { /tLastReadPacketListOverflow;/d }" \
    src/report_tdemux.cpp 's/c\.tLastReadPacketListOverflow/0/'
changed libstats incompatible "from 'int' to 'unsigned int'" $types "$in_counters s/^    int  *iLastError;/    unsigned int iLastError;/"
changed libstats incompatible "'unsigned long int nNumOutputPackets' offset changed" $types \
    "$in_counters { s/ nNumOutputBytes;/ nKept;/; s/ nNumOutputPackets;/ nNumOutputBytes;/; s/ nKept;/ nNumOutputPackets;/ }"
changed libstats incompatible 'changed length from 10 to 11' $types 's/\(SMGR_TDEMUX_MAX_SOURCES *\)10/\111/'
changed libstats incompatible "'UINT64 nPCR' offset changed" $types 's/pack(push, 4)/pack(push, 8)/'
changed libstats incompatible "type of 'int enMode' changed" include/sessmgr_audio.h 's/^    int  *enMode; /    long enMode; /'
changed libhostsvc incompatible 'changed length from 512 to 256' $types 's/szHostName\[512\]/szHostName[256]/'
changed headers incompatible "'BYTE szDescription[64]' offset changed" include/qrversioninfo.h \
    's/szRevision\[12\]/szRevision[8]/; s/szNotes\[80\]/szNotes[84]/'

# ---- Enumerations: of a field, of an int field, without a name ----

changed libstats incompatible "SMGR_TDEMUX_STATS_STATE_SCRAMBLED' from value '6' to '16'" $types 's/\(STATE_SCRAMBLED *= \)6/\116/'
changed libstats incompatible "SMGR_VIDEO_COLOR_TYPE_444' value '6'" $types '/SMGR_VIDEO_COLOR_TYPE_444 /d'
changed headers incompatible "SMGR_FEC_TYPE_PRO_MPEG' from value '2' to '3'" $types 's/\(FEC_TYPE_PRO_MPEG *= \)2/\13/'
changed headers incompatible "SMGR_ERROR_DAEMON_GONE' from value '1001' to '1000'" include/sessmgr_const.h 's/\(ERROR_DAEMON_GONE *= 100\)1/\10/'
changed headers incompatible "SMGR_CLOCK_TRACKING_ENABLED_LOCK' value '3'" $types '/SMGR_CLOCK_TRACKING_ENABLED_LOCK /d'
changed headers incompatible "VIDEO_FORMAT_1920_1080_29I' from value" include/video_formats.h 's/1920, 1080, 29, 1)/1920, 1080, 29, 0)/'
changed headers incompatible of_SMGR_STREAM_ENCAPSULATION_TS_RTP $types '/Stream encapsulations whose/,/^};/d'

# ---- Functions ----

changed libstats incompatible "[D] 'function BOOL STATS_PrintForVFramer(" src/libstats.map '/STATS_PrintForVFramer;/d'
changed libstats incompatible "from 'float' to 'double'" include/stats.h 's/_GetAbbrevFPSString(float/_GetAbbrevFPSString(double/' \
    src/lines.cpp 's/_GetAbbrevFPSString(float/_GetAbbrevFPSString(double/'
changed libhostsvc incompatible "[D] 'function char* StringCat(" hostsvc/hostsvc.map '/StringCat;/d'
changed libhostsvc incompatible "from 'long long int' to 'long int'" hostsvc/hostsvc.h 's/FormatUpTime(long long/FormatUpTime(long/' \
    hostsvc/format.cpp 's/FormatUpTime(long long/FormatUpTime(long/'
changed libhostsvc incompatible "from 'int' to 'long int'" hostsvc/hostsvc.h 's/int PrintToString(/long PrintToString(/' \
    hostsvc/format.cpp 's/int PrintToString(/long PrintToString(/'

# ---- Additions, and what programs built before do not see ----

changed libstats compatible "[A] 'function BOOL STATS_PrintForAdded(" include/stats.h 's/^STATS_API BOOL STATS_PrintForVFramer(/STATS_API BOOL STATS_PrintForAdded(int);\n&/' \
    src/lines.cpp '$a BOOL STATS_PrintForAdded(int) { return TRUE; }' src/libstats.map 's/STATS_PrintForVFramer;/&STATS_PrintForAdded;/'
changed libhostsvc compatible "[A] 'function char* FormatAdded(" hostsvc/hostsvc.h 's/^HOSTSVC_API char\* FormatULONG(/HOSTSVC_API char* FormatAdded(int);\n&/' \
    hostsvc/format.cpp '$a char* FormatAdded(int) { return nullptr; }'
changed libstats compatible "iLastCorruptedFrameTime' changed to" $types "$in_counters s/ iLastCorruptedFrameTime;/ iLastCorruptFrameTime;/"
changed libstats compatible "'tagSMGR_TDEMUX_STATS_STATE::SMGR_ADDED' value '8'" $types 's/^} SMGR_TDEMUX_STATS_STATE;/SMGR_ADDED = 8, &/'
changed headers compatible "::SMGR_ADDED' value '4096'" include/sessmgr_const.h 's/^};/SMGR_ADDED = 4096, };/'
changed headers compatible of_SMGR_ADDED include/xtypes.h 's/^typedef int  *BOOL;/enum { SMGR_ADDED };\n&/'
changed headers compatible of_tagADDED include/qrversioninfo.h 's/^#pragma pack(pop)/typedef struct tagADDED { int nAdded; } ADDED;\n&/'

# ---- What cannot be compared ----

cd ../original
name="no debug information"
strip --strip-debug libstats.so
check 2 "$PWD/libstats.so has no debug information"

[ $status -ne 0 ] || echo "$cases cases"
exit $status
