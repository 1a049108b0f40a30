#include "taskengine/partending.h"

#include <utility>

namespace taskengine {

namespace {

/** Gives the part file the name of the target. */
class PartCompletion : public Completion
{
public:
    PartCompletion(std::unique_ptr<PartFile> part, std::shared_ptr<TargetFile> target)
        : m_part(std::move(part)), m_target(std::move(target))
    {
    }

    ~PartCompletion() override
    {
        leavePart(*m_part, true);
        m_target->release();
    }

    std::optional<Fault> commit() override
    {
        const auto fault = m_part->commit(m_target->path());
        if (!fault)
            m_target->keep();
        return fault;
    }

private:
    const std::unique_ptr<PartFile> m_part;
    const std::shared_ptr<TargetFile> m_target;
};

/** Waits for the disk, which must not hold up the other transfers. */
class PartLeaving : public Completion
{
public:
    explicit PartLeaving(std::unique_ptr<PartFile> part) : m_part(std::move(part)) {}

    ~PartLeaving() override { leavePart(*m_part, true); }

    std::optional<Fault> commit() override
    {
        leavePart(*m_part, true);
        return std::nullopt;
    }

private:
    const std::unique_ptr<PartFile> m_part;
};

} // namespace

void leavePart(PartFile &part, bool mayContinue)
{
    if (mayContinue && part.isOpen())
        part.keep();
    else
        part.discard();
}

std::unique_ptr<Completion> partCompletion(std::unique_ptr<PartFile> part,
                                           std::shared_ptr<TargetFile> target)
{
    return std::make_unique<PartCompletion>(std::move(part), std::move(target));
}

std::unique_ptr<Completion> partLeaving(std::unique_ptr<PartFile> part)
{
    return std::make_unique<PartLeaving>(std::move(part));
}

} // namespace taskengine
