// Writes what the dictionary knows of the headers as checks that a C compiler reads: the size of every record, the place of
// every field, in arrays that of the first and the last element, and the value of every enumerator.

#include <cstdio>
#include <set>
#include <string>

#include "dictionary.h"

namespace
{

constexpr const char* record_types[] = {"SMGR_TDEMUX_STATS",
                                        "SMGR_VFRAMER_STATS",
                                        "SMGR_VCUDEC_STATS",
                                        "SMGR_DECODER_AUDIO_STATS",
                                        "SMGR_METADATADEC_STATS",
                                        "SMGR_CBUFFERING_STATS",
                                        "SMGR_DECODER_CLOCK_RECOVERY_STATS",
                                        "SMGR_DECODER_SDI_USAGE_STATS"};

void print_field(const dictionary::Field& field, std::size_t element)
{
    std::string member(field.member);
    if (field.array != nullptr) member.insert(member.find('[') + 1, std::to_string(element));
    std::printf("FIELD(%s, %s, %zu, %zu)\n", record_types[field.component], member.c_str(), field.offset(element), field.size);
}

/** Result codes are unsigned in the header and ints in the record. The codes of the system have its own headers. */
void print_values(const dictionary::Field& field)
{
    if (field.states == &dictionary::states::errno_or_eai || field.states == &dictionary::states::address_family) return;
    const bool is_result = field.states == &dictionary::states::session_error;
    for (const dictionary::State& state : field.states->values)
    {
        if (state.enumerator.empty()) continue;
        std::printf("VALUE(%.*s, ", static_cast<int>(state.enumerator.size()), state.enumerator.data());
        if (is_result || field.type == dictionary::Type::u64)
            std::printf("%luul)\n", is_result ? static_cast<unsigned int>(state.value) : static_cast<unsigned long>(state.value));
        else
            std::printf("%ld)\n", state.value);
    }
}

} // namespace

int main()
{
    for (const records::Component& component : records::components())
        std::printf("RECORD(%s, %zu)\n", record_types[component.index], component.record_size);
    std::set<const dictionary::States*> printed;
    for (const dictionary::Field& field : dictionary::fields())
    {
        print_field(field, 0);
        if (field.array != nullptr) print_field(field, field.count() - 1);
        if (field.states != nullptr && printed.insert(field.states).second) print_values(field);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
