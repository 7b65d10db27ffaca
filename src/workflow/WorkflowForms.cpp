#include "WorkflowForms.h"

#include "platform/Forms.h"

void registerWorkflowForms()
{
}
