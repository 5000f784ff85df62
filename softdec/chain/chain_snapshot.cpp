#include "chain/chain_snapshot.h"

#include "dictionary.h"

namespace softdec
{

records::Snapshot snapshot_of(Chain& chain, const Abilities& abilities)
{
    records::Snapshot snapshot;
    snapshot.records = chain.records();
    snapshot.taken_at = chain.clock().now();
    snapshot.present.set();
    snapshot.written_at.fill(snapshot.taken_at);
    for (const char* name : fields_not_measured(abilities))
        if (const auto found = dictionary::find(name)) snapshot.not_measured.set(found->field->index);
    return snapshot;
}

} // namespace softdec
