// The ports of automatons: what is sent and received, from within and from outside, and their connections.
#include "console/command.h"
#include "console/message.h"
#include "engine/automatons.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "operators/index.h"
#include "values/audit.h"
#include "values/convert.h"
#include "values/memory.h"

namespace vesko {

constexpr uint32_t max_ports = 1u << 16;

// ---- Records

Xport *newXport() {
    Xport *port = newBlock<Xport>();
    *port = {newQueue(), newQueue()};
    return port;
}

void freeXport(void *entry) {
    Xport *port = static_cast<Xport *>(entry);
    freeQueue(port->out);
    freeQueue(port->in);
    recycleBlock(port);
}

void auditXport(const Xport *port) {
    for (const xqueue *q : {port->out, port->in})
        if (auditFirst(q)) auditQueue(q);
}

Xport *growPorts(const Xproc *proc, uint32_t k) {
    while (proc->ports->size < k) {
        reserveElement(proc->ports);
        holdInterrupt();
        addElement(proc->ports, newXport());
        freeInterrupt();
    }
    return proc->ports->at<Xport>(k - 1);
}

uint32_t portNumber(Matrix *value, PcNode *node) {
    const uint32_t k = singleIndex(value, node);
    if (k > max_ports) error_index_bound(node, value, static_cast<int32_t>(k), max_ports);
    return k;
}

// ---- From within: children are `this` and the arguments, of which the last may be the port.

static Xport *evalPort(const Xproc *proc, const PcNode *args, uint32_t nth) {
    Matrix *value = args->eval(nth);
    const uint32_t k = portNumber(value, args->child(nth));
    releaseMat(value);
    return portAt(proc, k);
}

Matrix *procRecv(PcNode *node) {
    const Xproc *proc = top->proc;
    if (!proc) error_undef_opr(node, nullptr, node->kind);
    const PcNode *args = node->child(1);
    return queOutput((args->ncub ? evalPort(proc, args, 0) : portAt(proc, 1))->in);
}

Matrix *procSend(PcNode *node) {
    const Xproc *proc = top->proc;
    if (!proc) error_undef_opr(node, nullptr, node->kind);
    const PcNode *args = node->child(1);
    Matrix *value = args->eval(0);
    if (args->ncub == 1) {
        queInput(portAt(proc, 1)->out, value);
    } else {
        pinMat(value);
        queInput(evalPort(proc, args, 1)->out, value);
        unpinMat();
    }
    return theEmptyMat();
}

// ---- Connections: the output of one port and the input of another are one queue, which both hold.

static void connectAtmt(Xport *x, Xport *y) {
    xqueue *q = x->out, *r = y->in;
    holdInterrupt();
    if (q->shared && r->shared) {
        xqueue *fresh = newQueue();
        fresh->shared = true;
        freeQueue(q);  // a partner keeps it, unless the ports were each other's
        freeQueue(r);
        x->out = y->in = fresh;
    } else if (q->shared) {
        q->shared = false;
        r->shared = true;
        x->out = r;
    } else {
        freeQueue(r);
        q->shared = true;
        y->in = q;
    }
    freeInterrupt();
}

// The former partner keeps the queue and what waits in it.
static void disconnect(xqueue *&queue) {
    if (!queue->shared) return;
    holdInterrupt();
    xqueue *fresh = newQueue();
    queue->shared = false;
    queue = fresh;
    freeInterrupt();
}

static void disconnectAtmtInput(Xport *port) { disconnect(port->in); }
static void disconnectAtmtOutput(Xport *port) { disconnect(port->out); }
static void disconnectAtmtIO(Xport *port) {
    disconnect(port->in);
    disconnect(port->out);
}

// ---- Operands: an automaton, a list of an automaton and a port number, or nothing.

static uint32_t getProcPortId(const PcNode *node, const Matrix *value) {
    int32_t k;
    if (!extract_integer(value, k) || k < 1 || k > static_cast<int32_t>(max_ports)) {
        saveErrorMesg("Error: line %u, invalid index", node->line);
        xAbort(nullptr);
    }
    return static_cast<uint32_t>(k);
}

static bool isOperand(const Matrix *m) {
    return m->l2type == L2::AUTOMATON || m->l2type == L2::NUL || isList(m->l2type);
}

// The port of an operand; null for nothing.
static Xport *portOf(const Matrix *m, PcNode *node) {
    if (m->l2type == L2::NUL) return nullptr;
    if (m->l2type == L2::AUTOMATON) return portAt(procOf(m), 1);
    if (!isList(m->l2type) || m->length != 2) error_undef_opr2(node);
    const Matrix *a = m->entries()[0];
    if (a->l2type != L2::AUTOMATON) error_type(node);
    return portAt(procOf(a), getProcPortId(node, m->entries()[1]));
}

// Left and right are connected; where one is missing, the other is cut off.
struct Connection {
    void (*both)(Xport *left, Xport *right);
    void (*left_alone)(Xport *), (*right_alone)(Xport *);
};

static Matrix *applyConnection(PcNode *node, Matrix *a, Matrix *b, const Connection &how) {
    Xport *left = portOf(a, node), *right = portOf(b, node);
    if (left && right)
        how.both(left, right);
    else if (left)
        how.left_alone(left);
    else if (right)
        how.right_alone(right);
    else
        error_undef_opr2(node);
    releaseMat(b);
    releaseMat(unpinMat());
    return theEmptyMat();
}

Matrix *connectAutomatons(PcNode *node) {
    Matrix *a = pinMat(node->eval(0));
    return applyConnection(node, a, node->eval(1), {connectAtmt, disconnectAtmtOutput, disconnectAtmtInput});
}

static void connectBothWays(Xport *left, Xport *right) {
    connectAtmt(left, right);
    connectAtmt(right, left);
}

Matrix *connectAutomatons2way(PcNode *node) {
    Matrix *a = pinMat(node->eval(0));
    Matrix *b = node->eval(1);
    if (!isOperand(a)) error_undef_opr(node, a, node->kind);
    return applyConnection(node, a, b, {connectBothWays, disconnectAtmtIO, disconnectAtmtIO});
}

}  // namespace vesko
