#include "history/storedtexts.h"

#include "history/taskelement.h"

namespace {

template <typename Record>
void appendNames(std::vector<storedtexts::Name> &names,
                 const std::vector<taskelement::Field<Record>> &fields, bool isOfProfile)
{
    for (const auto &field : fields)
        names.push_back({field.name, isOfProfile});
}

template <typename Record>
void appendTexts(QStringList &texts, const Record &record,
                 const std::vector<taskelement::Field<Record>> &fields)
{
    for (const auto &field : fields)
        texts.append(taskelement::fieldText(record, field));
}

} // namespace

const std::vector<storedtexts::Name> &storedtexts::names()
{
    static const std::vector<Name> all = [] {
        std::vector<Name> names;
        appendNames(names, taskelement::infoFields(), false);
        appendNames(names, taskelement::profileFields(), true);
        return names;
    }();
    return all;
}

QStringList storedtexts::of(const CXMLInfo &record)
{
    QStringList texts;
    texts.reserve(qsizetype(names().size()));
    appendTexts(texts, record, taskelement::infoFields());
    appendTexts(texts, *record.Profile->m_pDesc, taskelement::profileFields());
    return texts;
}
