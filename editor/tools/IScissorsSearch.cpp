#include "tools/IScissors.h"

IScissors::Node IScissors::unqueued = {};

IScissors::Node* IScissors::nextMin()
{
    for (int empty = 0; empty < kBuckets; ++empty, ++currentCost) {
        Node* const head = buckets[currentCost & (kBuckets - 1)].head;
        if (!head) continue;
        unlink(head);
        return head;
    }
    return nullptr;
}

void IScissors::insert(int index, int from, int newCost)
{
    if (!isInside(index)) return;
    Node* const node = nodes + index;
    Bucket& bucket = buckets[newCost & (kBuckets - 1)];
    *node = {bucket.head, nullptr, from, newCost};
    (bucket.head ? bucket.head->prev : bucket.tail) = node;
    bucket.head = node;
    if (newCost < currentCost) currentCost = newCost;
}

void IScissors::decrease(int index, int from, int newCost)
{
    unlink(nodes + index);
    insert(index, from, newCost);
}

void IScissors::unlink(Node* node)
{
    Bucket& bucket = buckets[node->cost & (kBuckets - 1)];
    (node->prev ? node->prev->next : bucket.head) = node->next;
    (node->next ? node->next->prev : bucket.tail) = node->prev;
    node->next = &unqueued;
}

int IScissors::reallyCompute(int target)
{
    if (currentCost < 0) return 0; // the trace has ended
    while (Node* const node = nextMin()) {
        const int index = static_cast<int>(node - nodes), costSoFar = node->cost;
        node->cost = -1;
        expand(index, costSoFar);
        if (index == target) return 1;
    }
    return 0;
}

void IScissors::expand(int index, int costSoFar)
{
    // The order decides between paths of the same cost.
    const struct
    {
        int neighbour, direction;
    } kSteps[8] = {{index + 1, 0}, {index + width + 1, 2}, {index + width, 1}, {index + width - 1, 3},
                   {index - 1, 0}, {index - width - 1, 2}, {index - width, 1}, {index - width + 1, 3}};
    for (const auto& step : kSteps) {
        if (!isInside(step.neighbour)) continue;
        const Node& node = nodes[step.neighbour];
        if (node.cost < 0) continue;
        const int newCost = costSoFar + getCost(index, step.neighbour, step.direction);
        if (node.next == &unqueued)
            insert(step.neighbour, index, newCost);
        else if (newCost < node.cost)
            decrease(step.neighbour, index, newCost);
    }
}
