/**
 * @file chain_snapshot.h
 * The records of a chain at one moment, as everything that looks at decoders takes them.
 */
#ifndef SOFTDEC_CHAIN_CHAIN_SNAPSHOT_H
#define SOFTDEC_CHAIN_CHAIN_SNAPSHOT_H

#include "chain/chain.h"
#include "chain/not_measured.h"
#include "snapshot.h"

namespace softdec
{

/** The records as of now, with the fields that are not measured. Decoder, host and instance are empty. */
records::Snapshot snapshot_of(Chain& chain, const Abilities& abilities);

} // namespace softdec

#endif
