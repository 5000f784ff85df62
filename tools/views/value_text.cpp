#include "value_text.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cstring>
#include <netdb.h>
#include <sys/socket.h>

#include "hostsvc.h"
#include "number_text.h"
#include "utf8.h"

namespace views
{

namespace
{

using dictionary::States;
namespace states = dictionary::states;

/** A service that names the values of a state. */
struct Service
{
    const States* states;
    char* (*name)(int, char*, std::size_t);
};

/** The H.273 services take unsigned code points. */
template <char* (*name)(unsigned int, char*, std::size_t)> char* of_code_point(int code, char* buffer, std::size_t size)
{
    return name(static_cast<unsigned int>(code), buffer, size);
}

constexpr std::array services = {
    Service{&states::tdemux_state, SessMgr_GetTDemuxStateString},
    Service{&states::encapsulation, SessMgr_GetStreamEncapsulationString},
    Service{&states::data_type, SessMgr_GetTDemuxDataTypeString},
    Service{&states::compression, SessMgr_GetTDemuxCompressionTypeString},
    Service{&states::vframer_state, SessMgr_GetVFramerStateString},
    Service{&states::chroma_format, SessMgr_GetVideoColorTypeString},
    Service{&states::dynamic_range, SessMgr_GetVideoHDRTypeString},
    Service{&states::session_error, SessMgr_GetErrorString},
    Service{&states::colour_primaries, of_code_point<SessMgr_GetVideoColourPrimariesString>},
    Service{&states::transfer_characteristics, of_code_point<SessMgr_GetVideoTransferCharacteristicsString>},
    Service{&states::matrix_coefficients, of_code_point<SessMgr_GetVideoMatrixCoefficientsString>},
    Service{&states::vdecoder_state, SessMgr_GetVCUDecoderStateString},
    Service{&states::picture_structure, SessMgr_GetVCUDecoderPicStructureString},
    Service{&states::still_image_type, SessMgr_GetDecoderSdiStillImageString},
    Service{&states::codec_unit_error, SessMgr_GetVCUDecoderErrorString},
    Service{&states::audio_state, SessMgr_GetAudioDecoderStateString},
    Service{&states::metadata_state, SessMgr_GetMetadataStateString},
    Service{&states::buffering_state, SessMgr_GetCBufferingStatusString},
    Service{&states::buffering_mode, SessMgr_GetCBufferingModeString},
};

/** The C locale's words for an error of an address lookup, whatever locale is set. */
std::string lookup_error_text(int code)
{
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t set_locale = uselocale(c_locale);
    std::string text = gai_strerror(code);
    uselocale(set_locale);
    return text;
}

/** As the reports explain it: errors of address lookups have negative codes. */
std::string system_error_text(int code)
{
    if (code < 0) return lookup_error_text(code);
    const char* text = strerrordesc_np(code);
    return text != nullptr ? text : "Unknown error " + std::to_string(code);
}

/** Whether a field is an address: its family stands in front of it. */
bool is_address(const dictionary::Field& field)
{
    return field.full_name.ends_with(".ip");
}

/** A text on one line, safe for a terminal: without control characters, those of two bytes included. */
std::string one_line(std::string_view text)
{
    std::string line;
    for (const char character : valid_utf8(text))
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool is_second = line.ends_with('\xC2') && byte >= 0x80 && byte <= 0x9F;
        if (is_second) line.pop_back();
        line += is_second || byte < ' ' || byte == 0x7F ? '?' : character;
    }
    return line;
}

std::string float_text(float value)
{
    std::string text;
    if (std::isfinite(value))
        append_float(text, value);
    else
        text = std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity";
    return text;
}

} // namespace

std::optional<std::string> state_text(const dictionary::Field& field, std::int64_t code)
{
    if (field.states == &states::errno_or_eai) return system_error_text(static_cast<int>(code));
    const auto service = std::ranges::find(services, field.states, &Service::states);
    if (service == services.end()) return std::nullopt;
    std::array<char, 256> buffer;
    return service->name(static_cast<int>(code), buffer.data(), buffer.size());
}

bool is_version(const dictionary::Field& field)
{
    return field.kind == dictionary::Kind::identity && field.full_name.ends_with("version");
}

std::string version_text(const dictionary::Field& field, std::span<const std::byte> record)
{
    std::array<char, 64> buffer;
    return SessMgr_GetSRTVersionString(static_cast<int>(dictionary::integer(field, record)), buffer.data(), buffer.size());
}

std::string bytes_text(const dictionary::Field& field, std::span<const std::byte> record)
{
    const auto content = record.subspan(field.offset(), field.size);
    const std::int64_t family = is_address(field) ? dictionary::integer(dictionary::fields()[field.index - 1u], record) : AF_UNSPEC;
    if (family == AF_INET || family == AF_INET6)
    {
        SMGR_IP_ADDRESS address = {};
        address.enType = static_cast<int>(family);
        std::memcpy(address.acAddress, content.data(), std::min(content.size(), sizeof address.acAddress));
        std::array<char, 64> buffer;
        return SessMgr_GetIPAddressString(&address, buffer.data(), buffer.size());
    }

    std::string text;
    append_hex(text, content);
    return text;
}

std::string value_text(const dictionary::Field& field, std::span<const std::byte> record, std::size_t element)
{
    const dictionary::Value value = dictionary::value(field, record, element);
    std::string text;
    if (const auto* words = std::get_if<std::string_view>(&value)) return one_line(*words);
    if (std::holds_alternative<std::span<const std::byte>>(value)) return bytes_text(field, record);
    if (const auto* real = std::get_if<float>(&value)) return float_text(*real);
    if (const auto* moment = std::get_if<dictionary::Moment>(&value))
    {
        append_moment(text, *moment);
        return text;
    }
    const std::int64_t code = dictionary::integer(field, record, element);
    if (field.kind == dictionary::Kind::state) text = dictionary::identifier(field, code);
    if (field.kind == dictionary::Kind::flag && (code == 0 || code == 1)) text = code == 1 ? "true" : "false";
    if (!text.empty()) return text;
    if (const auto* natural = std::get_if<std::uint64_t>(&value))
        append_integer(text, *natural);
    else
        append_integer(text, code);
    return text;
}

std::string instance_text(const records::Instance& instance)
{
    std::string text;
    append_hex(text, std::as_bytes(std::span(instance.id)));
    return text;
}

} // namespace views
