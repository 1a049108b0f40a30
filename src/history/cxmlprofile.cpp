#include "history/cxmlprofile.h"

CXMLProfile::CXMLProfile() : m_pDesc(new Profile_Desc) {}

CXMLProfile::~CXMLProfile()
{
    delete m_pDesc;
}
