#pragma once

#include "KnjigeExport.h"

#include <QString>
#include <memory>
#include <optional>

namespace knjige
{

// What the component needs from its host beyond the session: the operator-rights
// service and the registers of business partners and of shops/warehouses. A host
// installs its own; without one the component allows everything and looks names up
// in dbo.Komitent.

class KNJIGE_EXPORT OperatorRights
{
public:
    // The five optional groups of browser commands a right can withhold.
    enum Group { Novi = 1, Izmjena = 2, Brisanje = 3, Ispis = 4, Izvoz = 5 };

    virtual ~OperatorRights() = default;
    virtual void setConnectionString(const QString& connectionString) = 0;
    virtual void setOperatorName(const QString& operatorName) = 0;
    virtual bool mayOpenBook(int bookKind) = 0;
    virtual bool hasRight(int bookKind, Group group) = 0;
};

struct Partner {
    qint32 SifKomit = 0;
    QString ImeKomit1;
};

// A register of partners (or of shops, which are partners too). choose() shows the
// host's chooser and gives nothing when the person cancels.
class KNJIGE_EXPORT PartnerRegister
{
public:
    virtual ~PartnerRegister() = default;
    virtual std::optional<Partner> choose() = 0;
    virtual std::optional<Partner> find(qint32 code) = 0;
};

struct HostServices {
    std::unique_ptr<OperatorRights> rights;
    std::unique_ptr<PartnerRegister> partners;
    std::unique_ptr<PartnerRegister> shops;
};

// The services in force; each member is never null.
KNJIGE_EXPORT HostServices& hostServices();
// Installs a host's services; a null member keeps the built-in one.
KNJIGE_EXPORT void installHostServices(HostServices services);

} // namespace knjige
