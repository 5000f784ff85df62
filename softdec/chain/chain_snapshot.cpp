#include "chain/chain_snapshot.h"

namespace softdec
{

records::Snapshot snapshot_of(Chain& chain, const Abilities& abilities)
{
    records::Snapshot snapshot;
    snapshot.records = chain.records();
    snapshot.taken_at = chain.clock().now();
    snapshot.present.set();
    snapshot.written_at.fill(snapshot.taken_at);
    for (const dictionary::Field* field : fields_not_measured(abilities)) snapshot.not_measured.set(field->index);
    return snapshot;
}

} // namespace softdec
