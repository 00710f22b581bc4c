#include "MacUserNotifier.h"

#include "MacBundle.h"
#include "MacConversions.h"

#import <UserNotifications/UserNotifications.h>

using namespace Qt::StringLiterals;
using namespace macconversions;

@interface VistrelNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation VistrelNotificationDelegate {
@public
    UserNotifier::ResponseHandler _onResponse;
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    const QString category = fromNSString(response.notification.request.content.categoryIdentifier);
    const UserNotifier::ResponseHandler handler = _onResponse;
    dispatch_async(dispatch_get_main_queue(), ^{
        if (handler)
            handler(category);
    });
    completionHandler();
}

@end

namespace {
const QString outsideBundle = u"Vistrel is not running from its application bundle, which notifications need"_s;
} // namespace

struct MacUserNotifier::Center
{
    // Nil outside an application bundle, where asking for the centre raises an exception.
    UNUserNotificationCenter *center = nil;
    // The centre keeps its delegate weakly.
    VistrelNotificationDelegate *delegate = [[VistrelNotificationDelegate alloc] init];
};

MacUserNotifier::MacUserNotifier() : m_center(std::make_unique<Center>())
{
    if (!macbundle::bundleIdentifier())
        return;
    m_center->center = [UNUserNotificationCenter currentNotificationCenter];
    m_center->center.delegate = m_center->delegate;
}

MacUserNotifier::~MacUserNotifier()
{
    if (m_center->center.delegate == m_center->delegate)
        m_center->center.delegate = nil;
}

void MacUserNotifier::setResponseHandler(ResponseHandler handler)
{
    m_center->delegate->_onResponse = std::move(handler);
}

void MacUserNotifier::requestAuthorization(AuthorizationCompletion completion)
{
    if (!m_center->center) {
        completion(false, outsideBundle);
        return;
    }
    const UNAuthorizationOptions options = UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                                           | UNAuthorizationOptionBadge;
    [m_center->center requestAuthorizationWithOptions:options
                                    completionHandler:^(BOOL granted, NSError *error) {
                                        completion(granted, error ? std::optional(describe(error)) : std::nullopt);
                                    }];
}

void MacUserNotifier::setCategories(const QStringList &categoryIdentifiers)
{
    if (!m_center->center)
        return;
    NSMutableSet<UNNotificationCategory *> *categories = [NSMutableSet set];
    for (const QString &identifier : categoryIdentifiers) {
        [categories addObject:[UNNotificationCategory categoryWithIdentifier:toNSString(identifier)
                                                                      actions:@[]
                                                            intentIdentifiers:@[]
                                                                      options:UNNotificationCategoryOptionNone]];
    }
    [m_center->center setNotificationCategories:categories];
}

void MacUserNotifier::add(const Request &request, ErrorCompletion completion)
{
    if (!m_center->center) {
        completion(outsideBundle);
        return;
    }
    UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
    content.title = toNSString(request.title);
    content.body = toNSString(request.body);
    content.categoryIdentifier = toNSString(request.categoryIdentifier);
    if (request.playsDefaultSound)
        content.sound = [UNNotificationSound defaultSound];
    // A time-interval trigger needs a positive interval; without one the notification is shown at once.
    UNNotificationTrigger *trigger = nil;
    if (request.triggerDelaySeconds > 0)
        trigger = [UNTimeIntervalNotificationTrigger triggerWithTimeInterval:request.triggerDelaySeconds repeats:NO];
    UNNotificationRequest *notification = [UNNotificationRequest requestWithIdentifier:toNSString(request.identifier)
                                                                               content:content
                                                                               trigger:trigger];
    [m_center->center addNotificationRequest:notification
                       withCompletionHandler:^(NSError *error) {
                           completion(error ? std::optional(describe(error)) : std::nullopt);
                       }];
}
