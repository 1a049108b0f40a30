/** A job that is done by HTTP transfers. */
#ifndef VIDEODOWN_TASKENGINE_TRANSFERJOB_H
#define VIDEODOWN_TASKENGINE_TRANSFERJOB_H

#include "taskengine/job.h"
#include "taskengine/responsehead.h"

#include <optional>

namespace taskengine {

/** Frames a try; what is asked for and what becomes of the answer is its subclasses' matter. */
class TransferJob : public Job, private TransferClient
{
public:
    TransferJob(RequestPointer request, const JobContext &context);

protected:
    /** Fetches the address. Faults in address or proxy settings fail the request. */
    void fetch(TransferRequest request);

    /** @return the fault of the answer's status */
    Fault statusFaultHere() const { return statusFault(m_transfer.easy()); }

    void work(Clock::time_point now) override;
    void cutTry() override;
    void setPaused(bool paused) override;

private:
    /** Judges the headers. @return a fault to refuse the answer */
    virtual std::optional<Fault> judge(const ResponseHead &head) = 0;
    /** @return whether the answer has brought all that it is wanted for */
    virtual bool isComplete() const { return false; }
    /** Takes a piece of the body. */
    virtual std::optional<Fault> take(const char *data, std::size_t length) = 0;
    /** The answer is there, whole as far as HTTP can tell. Calls `finish`, or returns a fault. */
    virtual std::optional<Fault> complete() = 0;

    bool responseBegan() final;
    bool received(const char *data, std::size_t length) final;
    void transferEnded(CURLcode code) final;
    std::optional<Fault> outcome(CURLcode code);

    std::optional<Fault> m_fault; ///< why this job ended the transfer itself
    Transfer m_transfer;
};

} // namespace taskengine

#endif
