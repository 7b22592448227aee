// Binary trees, built and taken down. The nodes stand in a list of all nodes, as those of a Type do.
#include <iostream>

struct Node {
    static Node *first, *last;
    Node *before, *after = nullptr;
    Node *left = nullptr, *right = nullptr;
    Node() : before(last) {
        (last != nullptr ? last->after : first) = this;
        last = this;
    }
    ~Node() {
        (before != nullptr ? before->after : first) = after;
        (after != nullptr ? after->before : last) = before;
    }
};
Node *Node::first = nullptr, *Node::last = nullptr;

static Node* Build(int depth) {
    Node* node = new Node();
    if (depth > 0) {
        node->left = Build(depth - 1);
        node->right = Build(depth - 1);
    }
    return node;
}

static int Weigh(const Node* node) {
    if (node->left == nullptr) return 1;
    return 1 + Weigh(node->left) + Weigh(node->right);
}

static void TakeDown(Node* node) {
    if (node->left != nullptr) {
        TakeDown(node->left);
        TakeDown(node->right);
    }
    delete node;
}

int main() {
    int total = 0;
    for (int round = 1; round <= 200; ++round) {
        Node* root = Build(13);
        total += Weigh(root);
        TakeDown(root);
    }
    std::cout << total << '\n';
}
