/**
 * @file program_tables.h
 * Follows the first program of a transport stream by its tables (ISO/IEC 13818-1, 2.4.4).
 */
#ifndef SOFTDEC_DEMUX_PROGRAM_TABLES_H
#define SOFTDEC_DEMUX_PROGRAM_TABLES_H

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "demux/elementary_packet.h"
#include "demux/transport_sync.h"

struct dvbpsi_s;
struct dvbpsi_pat_s;
struct dvbpsi_pmt_s;

namespace softdec
{

/** A program. */
struct Program
{
    unsigned number = 0;
    unsigned pcr_pid = 0;
    unsigned filtered = 0; /**< streams of a kind that is not decoded */
    std::vector<ElementaryStream> streams;

    bool operator==(const Program&) const = default;
};

class ProgramTables
{
public:
    /** @param changed is called with the program when its tables have changed */
    explicit ProgramTables(std::function<void(const Program&)> changed);
    ~ProgramTables();
    ProgramTables(const ProgramTables&) = delete;
    ProgramTables& operator=(const ProgramTables&) = delete;

    /** Takes a packet whose PID is 0 or pmt_pid. */
    void take(std::span<const std::uint8_t, packet_size> packet);

    /** PID of the program's map; 0x1fff = not known yet. */
    unsigned pmt_pid() const { return pmt_pid_; }

private:
    struct DeletePat
    {
        void operator()(dvbpsi_s* decoder) const;
    };
    struct DeletePmt
    {
        void operator()(dvbpsi_s* decoder) const;
    };

    void take_pat(const dvbpsi_pat_s& pat);
    void take_pmt(const dvbpsi_pmt_s& pmt);
    void follow(unsigned program, unsigned pid);

    std::function<void(const Program&)> changed_;
    std::unique_ptr<dvbpsi_s, DeletePat> pat_;
    std::unique_ptr<dvbpsi_s, DeletePmt> pmt_;
    unsigned program_ = 0;
    unsigned pmt_pid_ = 0x1fff;
    Program current_;
};

} // namespace softdec

#endif
