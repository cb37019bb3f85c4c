#pragma once

#include <cassert>

/// Base of the elements of a McFHeap: an element carries its own links. It can be in one heap at a time.
class McFHeapNode
{
public:
    McFHeapNode() = default;
    McFHeapNode(const McFHeapNode&) = delete;
    McFHeapNode& operator=(const McFHeapNode&) = delete;

private:
    template <class T>
    friend class McFHeap;

    McFHeapNode* parent = nullptr;
    McFHeapNode* child = nullptr;
    McFHeapNode* left = this;
    McFHeapNode* right = this;
    int degree = 0;
    bool lostChild = false;
};

/// Fibonacci heap over elements that derive from McFHeapNode and are ordered by `operator<`.
///
/// The heap neither copies nor owns its elements, and an element's key must not change while it is inside:
/// deleteElem() and insert() together lower or raise a key. insert() and getMin() take constant time,
/// deleteMin() and deleteElem() logarithmic time on average. Equal elements come out in any order.
///
/// M. Fredman and R. Tarjan, "Fibonacci Heaps and Their Uses in Improved Network Optimization Algorithms",
/// Journal of the ACM 34, 1987.
template <class T>
class McFHeap
{
public:
    McFHeap() = default;
    McFHeap(const McFHeap&) = delete;
    McFHeap& operator=(const McFHeap&) = delete;

    int size() const { return count; }
    bool isEmpty() const { return count == 0; }

    /// The smallest element, or null; it stays in the heap.
    T* getMin() const { return static_cast<T*>(minimum); }

    void insert(T* element)
    {
        McFHeapNode* node = element;
        node->parent = node->child = nullptr;
        node->degree = 0;
        addRoot(node);
        count++;
    }

    /// Takes out the smallest element; null if the heap is empty.
    T* deleteMin()
    {
        McFHeapNode* node = minimum;
        if (node) takeOutRoot(node);
        return static_cast<T*>(node);
    }

    /// Takes out an element, which must be in this heap.
    void deleteElem(T* element)
    {
        McFHeapNode* node = element;
        if (node->parent) cutWithAncestors(node);
        takeOutRoot(node);
    }

private:
    // A node of degree d has at least as many descendants as the d-th Fibonacci number.
    static constexpr int kMaxDegree = 64;

    McFHeapNode* minimum = nullptr;
    int count = 0;

    static bool less(const McFHeapNode* a, const McFHeapNode* b)
    {
        return *static_cast<const T*>(a) < *static_cast<const T*>(b);
    }

    static void link(McFHeapNode* node, McFHeapNode* before)
    {
        node->right = before;
        node->left = before->left;
        before->left->right = node;
        before->left = node;
    }

    static void unlink(McFHeapNode* node)
    {
        node->left->right = node->right;
        node->right->left = node->left;
        node->left = node->right = node;
    }

    void addRoot(McFHeapNode* node)
    {
        node->parent = nullptr;
        node->lostChild = false;
        node->left = node->right = node;
        if (minimum) link(node, minimum);
        if (!minimum || less(node, minimum)) minimum = node;
    }

    void cut(McFHeapNode* node)
    {
        McFHeapNode* parent = node->parent;
        if (parent->child == node) parent->child = node->right != node ? node->right : nullptr;
        parent->degree--;
        unlink(node);
        addRoot(node);
    }

    // A node that loses a second child is cut too, which keeps the trees bushy.
    void cutWithAncestors(McFHeapNode* node)
    {
        McFHeapNode* parent = node->parent;
        cut(node);
        while (parent->parent && parent->lostChild) {
            McFHeapNode* next = parent->parent;
            cut(parent);
            parent = next;
        }
        if (parent->parent) parent->lostChild = true;
    }

    void takeOutRoot(McFHeapNode* node)
    {
        while (McFHeapNode* c = node->child) {
            node->child = c->right != c ? c->right : nullptr;
            unlink(c);
            c->parent = nullptr;
            c->lostChild = false;
            link(c, node);
        }
        node->degree = 0;
        count--;
        if (node != minimum) {
            // The children are larger than the minimum as well, so the roots need no new order.
            unlink(node);
            return;
        }
        McFHeapNode* rest = node->right != node ? node->right : nullptr;
        unlink(node);
        minimum = nullptr;
        if (rest) consolidate(rest);
    }

    // Joins trees of equal degree until all degrees differ, and finds the new minimum.
    void consolidate(McFHeapNode* roots)
    {
        McFHeapNode* ofDegree[kMaxDegree] = {};
        int top = 0;
        while (roots) {
            McFHeapNode* tree = roots;
            roots = roots->right != roots ? roots->right : nullptr;
            unlink(tree);
            while (McFHeapNode* other = ofDegree[tree->degree]) {
                ofDegree[tree->degree] = nullptr;
                tree = join(tree, other);
            }
            assert(tree->degree < kMaxDegree);
            ofDegree[tree->degree] = tree;
            if (tree->degree > top) top = tree->degree;
        }
        for (int d = 0; d <= top; d++)
            if (ofDegree[d]) addRoot(ofDegree[d]);
    }

    static McFHeapNode* join(McFHeapNode* a, McFHeapNode* b)
    {
        if (less(b, a)) {
            McFHeapNode* t = a;
            a = b;
            b = t;
        }
        b->parent = a;
        b->lostChild = false;
        if (a->child)
            link(b, a->child);
        else
            a->child = b;
        a->degree++;
        return a;
    }
};
