#include "taskengine/transferjob.h"

#include "taskengine/address.h"
#include "taskengine/videoinfosource.h"

#include <cstring>
#include <utility>

namespace taskengine {

namespace {

/** A scheme or port inside the host text would silently override the other fields. */
bool isProxyUsable(const tagTaskInfo &record)
{
    const tagProxyParam &proxy = record.proxyParam;
    if (record.nProxySet != 1)
        return true;
    const bool knowsType = proxy.nProxyValue2 >= 0 && proxy.nProxyValue2 <= 2;
    return knowsType && proxy.szProxyText1[0] != '\0' &&
           std::strpbrk(proxy.szProxyText1, "/@ ") == nullptr && proxy.nProxyValue1 > 0 &&
           proxy.nProxyValue1 <= 65535;
}

} // namespace

TransferJob::TransferJob(RequestPointer request, const JobContext &context)
    : Job(std::move(request), context),
      m_transfer(multi(), Job::context().rate, *this, Job::request().record, options())
{
}

void TransferJob::fetch(TransferRequest request)
{
    m_fault.reset();
    introduce(request, this->request(), headers());
    if (const auto fault = addressFault(request.address))
        fail(*fault);
    else if (!isProxyUsable(this->request().record))
        fail(permanent(Failure::ProxyFailed));
    else if (!m_transfer.start(request))
        fail(permanent(Failure::Internal));
}

void TransferJob::work(Clock::time_point now)
{
    m_transfer.checkSpeed(now);
}

void TransferJob::cutTry()
{
    m_transfer.cancel();
}

void TransferJob::setPaused(bool paused)
{
    m_transfer.setPaused(paused);
}

bool TransferJob::responseBegan()
{
    const ResponseHead head = responseHead(m_transfer.easy());
    m_fault = head.contradictory ? permanent(Failure::MalformedResponse) : judge(head);
    return !m_fault && !isComplete();
}

bool TransferJob::received(const char *data, std::size_t length)
{
    m_fault = take(data, length);
    return !m_fault && !isComplete();
}

void TransferJob::transferEnded(CURLcode code)
{
    if (const auto fault = outcome(code))
        fail(*fault);
}

std::optional<Fault> TransferJob::outcome(CURLcode code)
{
    if (m_fault)
        return m_fault;
    if (code != CURLE_OK && !isComplete())
        return transferFault(m_transfer.easy(), code,
                             request().record.nProxySet == 1 || options().proxyFromEnvironment);
    return complete();
}

} // namespace taskengine
