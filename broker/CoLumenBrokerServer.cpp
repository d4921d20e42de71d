#include "broker/CoLumenBrokerServer.h"
