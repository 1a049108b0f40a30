#include "down/enginerequest.h"

namespace request {

void fillCommon(tagTaskInfo &task, const CDown &controller, int taskType)
{
    task.nTaskType = taskType;
    task.nProxySet = controller.m_nProxySet;
    if (controller.m_nProxySet == 1)
        task.proxyParam = controller.m_ProxyParam;
    task.nEngineParam1 = 3;
    task.nEngineParam2 = 5;
    task.nEngineParam3 = 500;
    task.pfnStateCallback = callbacks().state;
}

} // namespace request
