#ifndef VIDEODOWN_SITE_DELIVERY_H
#define VIDEODOWN_SITE_DELIVERY_H

#include "site/faults.h"
#include "site/gate.h"
#include "site/resource.h"
#include "site/videosite.h"

#include <httplib.h>

/**
 * Answers a request with a resource: ranges, If-Range, validators, and the fault that the request
 * meets. The body is sent after this has returned; `gate` must live until then.
 */
void deliver(const httplib::Request &request, httplib::Response &response, Resource resource,
             const MetFault &met, Gate &gate);

#endif
