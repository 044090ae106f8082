#include "session/HostServices.h"

#include "session/Session.h"

namespace knjige
{
namespace
{

class AllowEverything final : public OperatorRights
{
public:
    void setConnectionString(const QString&) override { }
    void setOperatorName(const QString&) override { }
    bool mayOpenBook(int) override { return true; }
    bool hasRight(int, Group) override { return true; }
};

// Looks partners up in dbo.Komitent; it has no chooser of its own.
class KomitentLookup final : public PartnerRegister
{
public:
    std::optional<Partner> choose() override { return std::nullopt; }
    std::optional<Partner> find(qint32 code) override
    {
        db::Database& db = session().db();
        db::ResultSet rs;
        if (!db.open(
                QStringLiteral("SELECT SifKomit,ImeKomit1 FROM dbo.Komitent WHERE SifKomit=") + QString::number(code),
                rs)
            || rs.isEmpty())
            return std::nullopt;
        return Partner { qint32(rs.integer(0, 0)), rs.text(0, 1) };
    }
};

HostServices makeDefaults()
{
    HostServices s;
    s.rights = std::make_unique<AllowEverything>();
    s.partners = std::make_unique<KomitentLookup>();
    s.shops = std::make_unique<KomitentLookup>();
    return s;
}

} // namespace

HostServices& hostServices()
{
    static HostServices services = makeDefaults();
    return services;
}

void installHostServices(HostServices services)
{
    HostServices& current = hostServices();
    HostServices defaults = makeDefaults();
    current.rights = services.rights ? std::move(services.rights) : std::move(defaults.rights);
    current.partners = services.partners ? std::move(services.partners) : std::move(defaults.partners);
    current.shops = services.shops ? std::move(services.shops) : std::move(defaults.shops);
}

} // namespace knjige
