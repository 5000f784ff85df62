// Host services that show how they were called instead of what the value means. Each writes {Name value size}, so that an
// expected line checks the service, the value that reached it and the size of its buffer:
//
//     FormatULONG(5, szBuffer, 1024)                    {ULONG 5 1024}
//     SessMgr_GetVideoProfileString(122, 1000, ..)      {VideoProfile 122 1000 1024}
//     SessMgr_GetIPAddressString                        {IPAddress family.first-byte 1024}; 0.0.0.0 for an unset address
//
// PrintToString and StringCat work as they should and are counted, with the sizes that they were given. PrintToString returns
// the length of what it wrote, or where a test asks for it that of the whole text, as snprintf does.
#ifndef RECORDING_SERVICES_H
#define RECORDING_SERVICES_H

#include <cstddef>
#include <string>
#include <vector>

/** One call of a service. */
struct ServiceCall
{
    std::string service; /**< name without FormatXxx's or SessMgr_Get's affixes, as in the text */
    std::string value;   /**< the value or values, with a blank between */
    size_t size;         /**< nSize */
    bool operator==(const ServiceCall&) const = default;
};

/** Calls since ClearServiceCalls, in order. */
const std::vector<ServiceCall>& ServiceCalls();
void ClearServiceCalls();

/** Whether PrintToString returns the length of the whole text, although it was cut. */
void ReturnUncutLength(bool uncut);

/** The text that FormatULONG writes for a 1024-character buffer, or another size. */
std::string Ulong(unsigned long value, size_t size = 1024);

/** The elapsed-time text of an event so many seconds before the frozen now. */
std::string Ago(long long seconds, size_t size = 1024);

#endif
