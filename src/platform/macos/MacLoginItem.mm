#include "MacLoginItem.h"

#include "MacConversions.h"
#include "MacMappings.h"

#import <ServiceManagement/ServiceManagement.h>

using namespace macconversions;

LoginItemService::Status MacLoginItem::status() const
{
    return macmappings::loginItemStatus(qint64(SMAppService.mainAppService.status));
}

std::optional<QString> MacLoginItem::registerApp()
{
    NSError *error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error])
        return std::nullopt;
    return describe(error);
}

std::optional<QString> MacLoginItem::unregisterApp()
{
    NSError *error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error])
        return std::nullopt;
    return describe(error);
}
