/** @file transport_stream.h What the rules about the transport stream and those about its program share. */
#ifndef DIAGNOSIS_TRANSPORT_STREAM_H
#define DIAGNOSIS_TRANSPORT_STREAM_H

#include "rule.h"

namespace diagnosis
{

/** The rules about the program and its elementary streams. They stand before those about the transport stream. */
const Rules& program_rules();

/** Whether the decoder decrypts what arrives, or need not. Reads tdemux.encapsulation, srt.undecrypted_packets, received_packets. */
bool is_clear(const Window& window);

} // namespace diagnosis

#endif
